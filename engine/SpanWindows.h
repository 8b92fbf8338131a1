// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"
#include "engine/EngineTables.h"

namespace tarvelline
{
/** The two windows laid over the output span of a synthesis frame.

    Threads: prepare() allocates; layOver() is real-time safe. */
class SpanWindows
{
public:
    /** For frames of N samples, over a span of N. The tables must outlive the windows. */
    void prepare (const EngineTables&, int frameSize);

    /** @param span     at most N
        @param scratch  at least N floats */
    void layOver (int span, float* scratch) noexcept;

    /** At each output sample. */
    const float* wide() const noexcept { return isWhole() ? tables->wideWindow.data() : wideOverSpan.data(); }

    /** From `narrowStart` up to `narrowEnd`, outside which it is 0. */
    const float* narrow() const noexcept
    {
        return isWhole() ? tables->narrowWindow.data() + narrowStart : narrowOverSpan.data();
    }

    int narrowStart = 0, narrowEnd = 0; // output samples

private:
    bool isWhole() const noexcept { return span == frameSize; }

    const EngineTables* tables = nullptr;
    int frameSize = 0, span = 0;
    AlignedVector<float> wideOverSpan, narrowOverSpan;
};
} // namespace tarvelline
