// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace tarvelline::test
{
// Catches band limits rounded instead of truncated, stretched by the scale where they must not be, or taken in double:
// single precision puts the last peak bin at 176.4 kHz on 128, not 127.
TEST (EngineTables, BandLimitsAreTheWorkedNumbers)
{
    // Frame length, frequency scale, rate in Hz; in bins: the first peak test, the falling thresholds, the low band.
    for (const auto& [length, scale, rate, peakStart, falling, full, end] :
         { std::tuple { 2048, 1.0f, 44100.0f, 69.0f, 18, 23, 37 },
           std::tuple { 2048, 1.0884354f, 48000.0f, 69.0f, 18, 21, 34 },
           std::tuple { 4096, 88200.0f * 1.5625e-5f, 88200.0f, 96.0f, 25, 23, 37 },
           std::tuple { 4096, 96000.0f * 1.5625e-5f, 96000.0f, 96.0f, 25, 21, 34 },
           std::tuple { 8192, 176400.0f * 1.0416667e-5f, 176400.0f, 128.0f, 34, 23, 37 },
           std::tuple { 8192, 2.0f, 192000.0f, 128.0f, 34, 21, 34 } })
    {
        SCOPED_TRACE (rate);
        const EngineTables tables (length, scale, rate);
        const auto& threshold = tables.onsetThreshold;
        const auto& weight = tables.lowBandWeight;
        EXPECT_EQ (tables.peakStartBin, peakStart);
        EXPECT_EQ (threshold.front(), 1.5f);
        EXPECT_EQ (std::count (threshold.begin(), threshold.end(), 1.3f), length / 2 - falling);
        EXPECT_EQ (std::count (weight.begin(), weight.end(), 1.0f), full + 1);
        EXPECT_EQ (std::count (weight.begin(), weight.end(), 0.0f), length / 2 - end);
    }
}
} // namespace tarvelline::test
