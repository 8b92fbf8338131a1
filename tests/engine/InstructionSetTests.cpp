// SPDX-License-Identifier: GPL-3.0-or-later
// Each instruction set compiles the vector code anew, with other widths, shuffles and tails: each has its own faults.
#include "engine/HartleyTransform.h"
#include "engine/PitchShiftEngine.h"
#include "tests/support/InstructionSets.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tarvelline::test
{
namespace
{
constexpr int frame = 2048;
constexpr double rate = 44100.0;

/** Partials, noise and clicks. */
Samples material()
{
    const auto length = lengthOf (0.5, rate);
    return mix (mix (harmonicTone (147.0, rate, 0.5, 20, 0.3), whiteNoise (length, noiseSeed, 0.05)),
                clickTrain (length, 5000));
}

/** A stereo engine whose ratio stands, or glides by two semitones; played in runs of `runLength` samples. */
Samples playInRuns (float ratio, float formantRatio, bool glides, int runLength)
{
    PitchShiftEngine engine;
    engine.prepare (frame, 1.0f, static_cast<float> (rate));
    const auto left = material();
    const auto length = static_cast<int> (left.size());
    auto right = left;
    std::reverse (right.begin(), right.end());
    Samples ratios (left.size(), ratio), formantRatios (left.size(), formantRatio);
    Samples output (2 * left.size());

    for (std::size_t i = 0; glides && i < ratios.size(); ++i)
        ratios[i] *= static_cast<float> (std::exp2 (static_cast<double> (i) / rate / 3.0));

    for (int start = 0; start < length; start += runLength)
    {
        const float* const in[] = { left.data() + start, right.data() + start };
        float* const out[] = { output.data() + start, output.data() + length + start };
        engine.process (
            { ratios.data() + start, formantRatios.data() + start, in, out, 2, std::min (runLength, length - start) });
    }

    return output;
}

struct Setting
{
    float ratio, formantRatio;
    bool glides;
};

/** Straight, stretched and compressed frames; numbers of bins that leave every tail; the envelope; a ratio that moves. */
constexpr Setting settings[] = { { 1.0f, 1.0f, false },  { 1.1892071f, 1.0f, false }, { 0.8408964f, 0.8f, false },
                                 { 0.97f, 1.0f, true },  { 3.97f, 1.0f, false },      { 0.26f, 1.3f, true },
                                 { 40.0f, 1.0f, false }, { 1.3f, 1.7f, true } };

class OnEach : public testing::TestWithParam<std::string>
{
protected:
    OnInstructionSet held { GetParam() };
};

INSTANTIATE_TEST_SUITE_P (Sets, OnEach, testing::ValuesIn (instructionSets()),
                          [] (const auto& row) { return row.param; });

// A lane or a twiddle in the wrong place. Tones on single bins show which; noise would only show that.
TEST_P (OnEach, AToneFillsItsBinAlone)
{
    for (const auto length : { 256, 2048, 4096, 8192 })
    {
        const HartleyTransform transform (length);
        const auto size = static_cast<std::size_t> (length), half = size / 2;

        for (const std::size_t bin :
             { std::size_t { 1 }, std::size_t { 7 }, half / 4, half / 2, half / 2 + 3, half - 1 })
        {
            Samples data (size);

            for (std::size_t n = 0; n < size; ++n)
                data[n] = static_cast<float> (std::cos (2.0 * std::numbers::pi * static_cast<double> (n * bin % size)
                                                        / static_cast<double> (length)));

            transform.forward (data.data());
            Samples expected (size, 0.0f);
            expected[bin] = expected[half + bin] = static_cast<float> (half);
            EXPECT_LT (relativeRmsError (data, expected), 1.0e-6) << length << ' ' << bin;
        }
    }
}

// A mask, a tail or a gather that one set gets wrong; the scalar code has none of them.
TEST_P (OnEach, SoundsAsTheScalarCode)
{
    for (const auto& [ratio, formantRatio, glides] : settings)
    {
        Samples outputs[2];

        for (const auto scalar : { true, false })
        {
            const OnInstructionSet set (scalar ? "SCALAR" : GetParam());
            outputs[scalar ? 1 : 0] = playInRuns (ratio, formantRatio, glides, 64);
        }

        // Rounding alone; where it flips the decision on an onset, one bin's phase differs for a while.
        EXPECT_GT (signalToDifferenceDb (outputs[0], outputs[1]), 75.0) << ratio << ' ' << formantRatio;
    }
}

// A vector that starts elsewhere rounds elsewhere, if its tail computes another way.
TEST_P (OnEach, RunsOfAnyLengthAndRepetitionsGiveTheSameBits)
{
    for (const auto& [ratio, formantRatio, glides] : settings)
    {
        const auto expected = playInRuns (ratio, formantRatio, glides, 1000);

        for (const auto runLength : { 1, 37, 1000 })
            EXPECT_TRUE (sameBits (playInRuns (ratio, formantRatio, glides, runLength), expected))
                << ratio << ' ' << runLength;
    }
}
} // namespace
} // namespace tarvelline::test
