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
