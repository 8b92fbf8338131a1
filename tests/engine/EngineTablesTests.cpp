// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

namespace tarvelline::test
{
namespace
{
/** One supported rate with the frame length and frequency scale that go with it, and what follows from them. */
struct RateCase
{
    int frameLength;
    float frequencyScale, sampleRate;
    float peakStartBin;
    std::size_t fallingThresholds, lowBandFull, lowBandEnd; // bins
};

const RateCase rateCases[] = {
    { 2048, 1.0f, 44100.0f, 69.0f, 18, 23, 37 },
    { 2048, 1.0884354f, 48000.0f, 69.0f, 18, 21, 34 },
    { 4096, 88200.0f * 1.5625e-5f, 88200.0f, 96.0f, 25, 23, 37 },
    { 4096, 96000.0f * 1.5625e-5f, 96000.0f, 96.0f, 25, 21, 34 },
    { 8192, 176400.0f * 1.0416667e-5f, 176400.0f, 128.0f, 34, 23, 37 },
    { 8192, 2.0f, 192000.0f, 128.0f, 34, 21, 34 },
};

EngineTables tablesFor (const RateCase& c) { return { c.frameLength, c.frequencyScale, c.sampleRate }; }

} // namespace

// Catches band limits rounded instead of truncated, stretched by the scale where they must not be, or taken in double:
// single precision puts the last peak bin at 176.4 kHz on 128, not 127.
TEST (EngineTables, BandLimitsAreTheWorkedNumbers)
{
    for (const auto& c : rateCases)
    {
        SCOPED_TRACE (c.sampleRate);
        const auto tables = tablesFor (c);
        EXPECT_EQ (tables.peakStartBin, c.peakStartBin);

        const auto& threshold = tables.onsetThreshold;
        ASSERT_EQ (threshold.size(), static_cast<std::size_t> (c.frameLength / 2));
        EXPECT_EQ (threshold.front(), 1.5f);
        EXPECT_NEAR (
            threshold[c.fallingThresholds / 2],
            1.5 - 0.2 * static_cast<double> (c.fallingThresholds / 2) / static_cast<double> (c.fallingThresholds),
            1.0e-6);
        EXPECT_GT (threshold[c.fallingThresholds - 1], 1.3f);
        EXPECT_EQ (std::count (threshold.begin(), threshold.end(), 1.3f),
                   std::ssize (threshold) - static_cast<std::ptrdiff_t> (c.fallingThresholds));

        const auto& weight = tables.lowBandWeight;
        ASSERT_EQ (weight.size(), threshold.size());
        EXPECT_TRUE (std::is_sorted (weight.begin(), weight.end(), std::greater<>()));
        EXPECT_EQ (weight[c.lowBandFull], 1.0f); // the fall starts at 1: the cosine of 0
        EXPECT_LT (weight[c.lowBandFull + 1], 1.0f);
        EXPECT_GT (weight[c.lowBandEnd - 1], 0.0f);
        EXPECT_EQ (weight[c.lowBandEnd], 0.0f);
        EXPECT_NEAR (weight[c.lowBandFull + 3] + weight[c.lowBandEnd - 3], 1.0f, 1.0e-6f); // a raised cosine
    }
}

// The synthesis adds up its window index in single precision: rounding carries the end of the sum past N for half the spans,
// by up to 0.999 at N = 8192. Catches tables without the entry N, and longer frames, for which one more would not do.
TEST (EngineTables, TheRunningWindowIndexStaysWithinTheTables)
{
    for (const auto& c : rateCases)
    {
        const auto tables = tablesFor (c);

        for (int span = 250; span <= c.frameLength; ++span)
        {
            const auto step = static_cast<float> (c.frameLength) / static_cast<float> (span);
            auto index = 0.0f;

            for (int j = 0; j < span; ++j)
                index += step;

            ASSERT_LT (static_cast<std::size_t> (index), tables.wideWindow.size()) << span;
            ASSERT_LT (static_cast<std::size_t> (index), tables.narrowWindow.size()) << span;
        }
    }
}
} // namespace tarvelline::test
