// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

#include <algorithm>
#include <cstddef>

namespace tarvelline
{
/** A ring of samples read and written in one go. resize() allocates; exchange() is real-time safe. */
class DelayLine
{
public:
    /** Makes the delay `samples` long (at least 1) and silent. */
    void resize (int samples)
    {
        ring.assign (static_cast<std::size_t> (samples), 0.0f);
        position = 0;
    }

    /** Keeps `count` samples and puts those it kept longest in their place. Leaves them alone while the line has no length. */
    void exchange (float* samples, int count) noexcept
    {
        if (ring.empty())
            return;

        for (auto *next = samples, *const end = samples + count; next != end;)
        {
            const auto run = std::min (static_cast<std::size_t> (end - next), ring.size() - position);
            std::swap_ranges (next, next + run, ring.data() + position);
            next += run;
            position = position + run == ring.size() ? 0 : position + run;
        }
    }

private:
    AlignedVector<float> ring;
    std::size_t position = 0;
};
} // namespace tarvelline
