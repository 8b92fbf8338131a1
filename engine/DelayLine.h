// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

#include <cstddef>

namespace tarvelline
{
/** A ring of samples read and written in one step. resize() allocates; exchange() is real-time safe. */
class DelayLine
{
public:
    /** Makes the delay `samples` long (at least 1) and silent. */
    void resize (int samples)
    {
        ring.assign (static_cast<std::size_t> (samples), 0.0f);
        position = 0;
    }

    /** Returns the oldest sample and stores `newest` in its place; `newest` itself while the line has no length. */
    float exchange (float newest) noexcept
    {
        if (ring.empty())
            return newest;

        const auto oldest = ring[position];
        ring[position] = newest;

        if (++position == ring.size())
            position = 0;

        return oldest;
    }

private:
    AlignedVector<float> ring;
    std::size_t position = 0;
};
} // namespace tarvelline
