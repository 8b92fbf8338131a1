// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineTables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

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

double product (const AlignedVector<float>& first, const AlignedVector<float>& second)
{
    return std::inner_product (first.begin(), first.end(), second.begin(), 0.0);
}
} // namespace

// Catches a window of another shape or place, swapped windows, and a narrow window whose gain is its own: the bands below
// 500 Hz and above 800 Hz would then differ in level.
TEST (EngineTables, WindowsAreHalfSinesOfEqualOverlapAddGain)
{
    for (const auto& c : rateCases)
    {
        const auto tables = tablesFor (c);
        const auto length = static_cast<std::size_t> (c.frameLength);
        const auto start = length * 3 / 8, end = length * 5 / 8; // of the narrow window
        ASSERT_EQ (tables.wideWindow.size(), length + 1);
        ASSERT_EQ (tables.narrowWindow.size(), length + 1);
        EXPECT_EQ (tables.wideWindow[length], 0.0f); // read where rounding carries the window index to N

        for (std::size_t j = 0; j < length; ++j)
        {
            ASSERT_NEAR (tables.wideWindow[j], tables.wideWindow[length - 1 - j], 1.0e-6f) << j;
            ASSERT_NEAR (tables.narrowWindow[j], tables.narrowWindow[length - 1 - j], 2.0e-6f) << j;
            ASSERT_TRUE (tables.narrowWindow[j] == 0.0f || (j > start && j < end)) << j;
        }

        EXPECT_EQ (tables.wideWindow[0], 0.0f);
        EXPECT_NEAR (tables.wideWindow[length / 6], 0.5f, 1.0e-3f); // sin 30 degrees
        EXPECT_NEAR (tables.wideWindow[length / 2], 1.0f, 1.0e-6f);
        EXPECT_NEAR (tables.narrowWindow[start + length / 24] / tables.narrowWindow[length / 2], 0.5f, 5.0e-3f);
        EXPECT_GT (tables.narrowWindow[start + 1], 0.0f);

        // The sum of squared half sines is (N - 1) / 2: eight of them a frame length make the 4 of the engine's gain.
        EXPECT_NEAR (product (tables.wideWindow, tables.wideWindow), 0.5 * (c.frameLength - 1), 1.0e-3);
        EXPECT_NEAR (product (tables.wideWindow, tables.narrowWindow) / product (tables.wideWindow, tables.wideWindow),
                     1.0, 1.0e-6);
    }
}

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

// Catches a smoother that runs the wrong way up the bins or takes its exponent a bin instead of a share of the spectrum.
TEST (EngineTables, EnvelopeSmoothsLessTowardsTheTop)
{
    for (const auto& c : rateCases)
    {
        const auto coefficients = tablesFor (c).envelopeCoeff;
        ASSERT_EQ (coefficients.size(), static_cast<std::size_t> (c.frameLength / 2));
        EXPECT_TRUE (std::is_sorted (coefficients.begin(), coefficients.end(), std::greater<>()));
        EXPECT_NEAR (coefficients.front(), 0.7304, 1.0e-4);
        EXPECT_NEAR (coefficients.back(), 0.2632, 4.0e-4);
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
