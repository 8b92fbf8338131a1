// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SpanWindows.h"

#include "engine/SynthesisKernels.h"

#include <algorithm>
#include <cmath>

namespace tarvelline
{
namespace
{
/** 0, step, step + step, ... as a running sum in single precision has them. Between two powers of two all numbers are
    multiples of one smallest step, and a sum grows there by equal, exact amounts once its first rounding is behind it. So
    most entries need not wait for the one before. */
void fillRunningSum (float* sums, int count, float step) noexcept
{
    auto sum = 0.0f;

    for (int j = 0; j < count;)
    {
        const auto second = sum + step, third = second + step, fourth = third + step, increment = fourth - third;
        int exponent = 0;
        std::frexp (second, &exponent);
        const auto powerAbove = std::ldexp (1.0f, exponent);
        sums[j++] = sum;
        sum = second;

        if (j == count || fourth >= powerAbove)
            continue;

        sums[j++] = second;
        const auto alike = std::min (count - j, static_cast<int> (std::ceil ((powerAbove - third) / increment)));

        for (int i = 0; i < alike; ++i)
            sums[j + i] = third + static_cast<float> (i) * increment;

        j += alike;
        sum = sums[j - 1] + step;
    }
}
} // namespace

void SpanWindows::prepare (const EngineTables& windowTables, int frameLength)
{
    tables = &windowTables;
    span = frameSize = frameLength;
    wideOverSpan.resize (static_cast<std::size_t> (frameLength));
    narrowStart = tables->narrowStart;
    narrowEnd = tables->narrowEnd;
    narrowOverSpan.resize (static_cast<std::size_t> (narrowEnd - narrowStart) + 1);
}

void SpanWindows::layOver (int newSpan, float* scratch) noexcept
{
    if (newSpan == span)
        return;

    span = newSpan;
    narrowStart = tables->narrowStart;
    narrowEnd = tables->narrowEnd;

    if (isWhole())
        return;

    fillRunningSum (scratch, span, static_cast<float> (frameSize) / static_cast<float> (span));
    const auto firstFrom = [=, this] (int entry)
    { return static_cast<int> (std::lower_bound (scratch, scratch + span, static_cast<float> (entry)) - scratch); };
    narrowStart = firstFrom (narrowStart);
    narrowEnd = firstFrom (narrowEnd);

    const auto inner = static_cast<std::size_t> (narrowStart), outer = static_cast<std::size_t> (narrowEnd);
    const auto lay = [=, this] (const auto& table, auto& window, std::size_t from, std::size_t end)
    {
        kernels::takeEntries (table.data(), static_cast<std::size_t> (frameSize) + 1, scratch + from, window.data(),
                              end - from);
    };
    lay (tables->wideWindow, wideOverSpan, 0, static_cast<std::size_t> (span));
    lay (tables->narrowWindow, narrowOverSpan, inner, outer);
}
} // namespace tarvelline
