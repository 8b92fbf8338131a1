// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineTables.h"
#include "engine/PitchShiftEngine.h"
#include "tests/support/InstructionSets.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>
#include <numbers>
#include <ostream>
#include <tuple>

namespace tarvelline::test
{
namespace
{
constexpr double unityGainDb = 0.34; // 1.04: eight overlapping squared half sines sum to 4, times 0.26

struct Setup
{
    double rate; // Hz
    int frameSize;
    float frequencyScale;
};

void PrintTo (const Setup& setup, std::ostream* out) { *out << setup.rate << " Hz"; } // names the test in listings

constexpr Setup setups[] = { { 44100.0, 2048, 1.0f },
                             { 48000.0, 2048, 1.0884354f },
                             { 96000.0, 4096, 1.5000001f },
                             { 192000.0, 8192, 2.0f } };

constexpr int frame = setups[0].frameSize; // of the tests that need one rate only
constexpr float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

PitchShiftEngine engineAt (float pitchRatio, float formantRatio = 1.0f, const Setup& setup = setups[0])
{
    PitchShiftEngine engine;
    engine.prepare (setup.frameSize, setup.frequencyScale, static_cast<float> (setup.rate));
    engine.setRatios (pitchRatio, formantRatio);
    return engine;
}

float ratioOf (double semitones) { return static_cast<float> (std::exp2 (semitones / 12.0)); }

/** Sample by sample; the channels are interleaved. */
Samples play (PitchShiftEngine& engine, Signal input, int channels = 1)
{
    Samples output (input.size());

    for (std::size_t i = 0; i < input.size(); i += static_cast<std::size_t> (channels))
        engine.processFrame (&input[i], &output[i], channels);

    return output;
}

Samples play (PitchShiftEngine&& engine, Signal input) { return play (engine, input); }

/** Stereo along ratios that are given for each sample, in runs of `runLength`; one channel after the other. */
Samples playAlong (const Samples& ratios, const Samples& formantRatios, int runLength)
{
    auto engine = engineAt (1.0f);
    const auto length = static_cast<int> (ratios.size());
    const auto left = material (length), right = whiteNoise (length);
    Samples output (2 * ratios.size());

    for (int start = 0; start < length; start += runLength)
    {
        const float* const in[] = { left.data() + start, right.data() + start };
        float* const out[] = { output.data() + start, output.data() + length + start };
        engine.process (
            { ratios.data() + start, formantRatios.data() + start, in, out, 2, std::min (runLength, length - start) });
    }

    return output;
}

/** What a steady tone is shifted by. Every synthesis hop turns a bin's phase by an analysis hop's worth, so the pitch is the
    ratio of the hops, and they are whole samples: at N = 2048 the ratio 1.5 sounds as 256 / 170, 6.8 cents above it. */
double soundingRatio (int frameSize, float ratio)
{
    const auto hop = [frameSize] (float share)
    { return std::max (static_cast<int> (static_cast<float> (frameSize) * share), 250) / 8; };

    return static_cast<double> (hop (std::min (ratio, 1.0f)))
           / static_cast<double> (hop (1.0f / std::max (ratio, 1.0f)));
}
} // namespace

class EngineAtRate : public testing::TestWithParam<Setup>
{
};

INSTANTIATE_TEST_SUITE_P (Rates, EngineAtRate, testing::ValuesIn (setups),
                          [] (const auto& setup) { return std::to_string (static_cast<int> (setup.param.rate)); });

// Catches a wrong hop, span or resampling, and phases that advance by another amount than the hop. The level catches wrong
// gains and windows, and bins that lose their phase relation to their neighbours.
TEST_P (EngineAtRate, ASteadyToneIsShiftedByTheRatioOfTheHops)
{
    const auto setup = GetParam();
    const auto start = static_cast<std::size_t> (0.15 * setup.rate);
    constexpr auto hertz = 1000.0;
    const auto tone = sine (hertz, setup.rate, 0.6, 0.5);

    for (const auto ratio : { 0.25f, ratioOf (-12), ratioOf (-7), ratioOf (-3), ratioOf (-0.01), 1.0f, ratioOf (0.01),
                              ratioOf (3), ratioOf (7), ratioOf (12), 4.0f })
    {
        SCOPED_TRACE (ratio);

        // A rise starts on a tone that sounds already: its bins agree in phase and go on agreeing. Not so at an onset, nor
        // in a fall, which moves the tone to other bins: those start one by one, and partly cancel.
        auto engine = engineAt (std::min (ratio, 1.0f), 1.0f, setup);
        play (engine, Signal (tone).first (start));
        engine.setRatios (ratio, 1.0f);
        const auto output = play (engine, Signal (tone).subspan (start));
        const auto steady = Signal (output).subspan (start);
        const auto expected = hertz * soundingRatio (setup.frameSize, ratio);
        const auto levelChange = componentDb (steady, expected, setup.rate) - componentDb (tone, hertz, setup.rate);
        const auto lowest = ratio < 0.5f ? -3.6 : -1.2;

        EXPECT_NEAR (centsBetween (expected, frequencyHz (steady, setup.rate)), 0.0, 0.005); // measured: 0.0009
        EXPECT_GT (levelChange, ratio >= 1.0f ? unityGainDb - 0.1 : lowest); // measured: 0.28 and -3.3, -0.88
        EXPECT_LT (levelChange, ratio >= 1.0f ? unityGainDb + 0.1 : unityGainDb + 0.75); // measured: 0.35 and 0.81
    }
}

// Catches a ring read one sample or one hop off: the delayed dry signal is mixed with this output.
TEST_P (EngineAtRate, AnImpulseAtRatioOneLeavesAfterExactlyOneFrame)
{
    const auto setup = GetParam();

    for (const auto position : { 0, 1, setup.frameSize - 1, setup.frameSize + 37, 2 * setup.frameSize + 1234 })
    {
        const auto output = play (engineAt (1.0f, 1.0f, setup), impulse (5 * setup.frameSize, position));
        EXPECT_EQ (std::max_element (output.begin(), output.end()) - output.begin(), position + setup.frameSize);
        EXPECT_NEAR (peak (output), 1.0f, 0.2f); // measured: 0.85 .. 1.14, by where in a hop it falls
    }
}

class EngineOnEach : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P (Sets, EngineOnEach, testing::ValuesIn (instructionSets()),
                          [] (const auto& row) { return row.param; });

// Catches a mask, a tail or a gather that one instruction set gets wrong, and a tail that computes another way than its
// vector: it would round differently with the run's length. The numbers of bins leave every tail.
TEST_P (EngineOnEach, SoundsAsTheScalarCodeInRunsOfAnyLength)
{
    for (const auto& [ratio, formantRatio, glide] : { std::tuple { 1.0f, 1.0f, 0.0 },
                                                      { 0.8408964f, 0.8f, 0.0 },
                                                      { 0.97f, 1.0f, 2.0 },
                                                      { 3.97f, 1.0f, 0.0 },
                                                      { 0.26f, 1.3f, 2.0 },
                                                      { 40.0f, 1.0f, 0.0 },
                                                      { 1.3f, 1.7f, 2.0 } }) // the glide in semitones
    {
        Samples ratios (22050, ratio);
        const Samples formantRatios (ratios.size(), formantRatio);

        for (std::size_t i = 0; i < ratios.size(); ++i)
            ratios[i] *= ratioOf (glide * static_cast<double> (i) / static_cast<double> (ratios.size()));

        const auto playOn = [&] (const std::string& set, int runLength)
        {
            const OnInstructionSet held (set);
            return playAlong (ratios, formantRatios, runLength);
        };
        const auto output = playOn (GetParam(), 1000);

        // Rounding alone; where it flips the decision on an onset, one bin's phase differs for a while.
        EXPECT_GT (signalToDifferenceDb (output, playOn ("SCALAR", 64)), 75.0) << ratio;
        EXPECT_TRUE (sameBits (output, playOn (GetParam(), 1))) << ratio;
        EXPECT_TRUE (sameBits (output, playOn (GetParam(), 37))) << ratio;
    }
}

// Catches band limits taken in double: single precision puts the last peak bin at 176.4 kHz on 128, not 127.
TEST (EngineTables, BandLimitsAreTakenInSinglePrecision)
{
    EXPECT_EQ (EngineTables (8192, 176400.0f * 1.0416667e-5f, 176400.0f).peakStartBin, 128.0f);
}

// A slope between the bands that goes on beyond the highest bin is cut there, and not made steeper to end there.
TEST (EngineTables, ALowRateCutsTheSlopeBetweenTheBands)
{
    const EngineTables tables (2048, 1400.0f * 2.2675737e-5f, 1400.0f); // from bin 731 to where bin 1170 would be
    EXPECT_EQ (tables.lowBandWeight[731], 1.0f);
    EXPECT_NEAR (tables.lowBandWeight[1023], 0.5 + 0.5 * std::cos (std::numbers::pi * 292.0 / 439.0), 1.0e-4);
}

// The synthesis adds up its window index in single precision: rounding carries the end of the sum past N for half the spans,
// by up to 0.999 at N = 8192. Catches tables without the entry N.
TEST (EngineTables, TheRunningWindowIndexStaysWithinTheTables)
{
    const EngineTables tables (8192, 2.0f, 192000.0f);

    for (int span = 250; span <= 8192; ++span)
    {
        auto index = 0.0f;

        for (int j = 0; j < span; ++j)
            index += 8192.0f / static_cast<float> (span);

        ASSERT_LT (static_cast<std::size_t> (index), std::min (tables.wideWindow.size(), tables.narrowWindow.size()));
    }
}

// Catches missing guards: NaNs from 0 / 0, and arithmetic that creeps along on denormals for as long as silence lasts.
TEST (PitchShiftEngine, SilenceStaysSilentAndFreeOfDenormals)
{
    for (const auto ratio : { 0.5f, 1.0f, 1.5f })
        for (const auto formant : { 1.0f, 1.3f })
        {
            auto engine = engineAt (ratio, formant);

            for (const auto& before : { silence (1), material (44100) })
            {
                play (engine, before);
                play (engine, silence (4 * frame));
                std::feclearexcept (FE_UNDERFLOW);
                EXPECT_EQ (peak (play (engine, silence (20 * frame))), 0.0f) << ratio << ' ' << formant;
                EXPECT_FALSE (std::fetestexcept (FE_UNDERFLOW)) << ratio << ' ' << formant;
            }
        }
}

// Catches a clamp left out or passed by a NaN, for which every comparison is false: it would end as an index.
TEST (PitchShiftEngine, RatiosOutOfRangeAreHeldAtTheLimits)
{
    const auto input = material (6 * frame);

    for (const auto& [asked, held, askedFormant, heldFormant] : { std::tuple { 0.0f, 1.0e-10f, 1.0f, 1.0f },
                                                                  { -infinity, 1.0e-10f, 1.0f, 1.0f },
                                                                  { nan, 1.0e-10f, 1.0f, 1.0f },
                                                                  { 96.5f, 96.0f, 1.0f, 1.0f },
                                                                  { infinity, 96.0f, 1.0f, 1.0f },
                                                                  { 1.5f, 1.5f, -1.0f, 0.001f },
                                                                  { 1.5f, 1.5f, nan, 0.001f } })
        EXPECT_TRUE (
            sameBits (play (engineAt (asked, askedFormant), input), play (engineAt (held, heldFormant), input)))
            << asked << ' ' << askedFormant;

    EXPECT_TRUE (allFinite (play (engineAt (1.5f, infinity), input)));
    EXPECT_GT (peak (play (engineAt (96.0f), input)), 1.0e-3f); // the ten bins that are left still sound
}

// An infinity makes NaNs of some phases, and while the bin stays stable nothing restarts them: one bad sample would silence
// the effect for ever. Catches samples that reach the rings unchecked; the loudest one that counts is +80 dB.
TEST (PitchShiftEngine, WhatIsNoSampleCountsAsSilence)
{
    for (const auto ratio : { 0.5f, 1.0f, 1.5f })
        for (const auto formant : { 1.0f, 1.3f })
        {
            auto input = material (44100), broken = input;

            for (std::size_t i = 20000; const auto bad : { nan, infinity, -infinity, 1.0e30f, -1.0e5f, 1.0e-39f })
            {
                input[i] = 0.0f;
                broken[i] = bad;
                i += frame / 3;
            }

            const auto expected = play (engineAt (ratio, formant), input);
            EXPECT_TRUE (sameBits (play (engineAt (ratio, formant), broken), expected)) << ratio << ' ' << formant;

            input[20000] = 1.0e4f;
            const auto loud = play (engineAt (ratio, formant), input);
            const auto after = static_cast<std::size_t> (20000 + 3 * frame); // every frame that held it has passed
            EXPECT_GT (peak (loud), 100.0f);
            EXPECT_NEAR (levelDb (Signal (loud).subspan (after)), levelDb (Signal (expected).subspan (after)), 3.0)
                << ratio << ' ' << formant; // measured: 0.5
        }
}

// Catches a buffer or counter that reset() forgets: the old sound would return in the next one.
TEST (PitchShiftEngine, ResetEqualsAFreshEngine)
{
    const auto stereo = material (88200);
    auto engine = engineAt (1.7f, 1.2f), fresh = engineAt (1.0f);
    play (engine, stereo, 2);
    engine.setRatios (1.0f, 1.0f);
    play (engine, Signal (stereo).first (10001)); // ends inside a hop
    engine.reset();
    EXPECT_TRUE (sameBits (play (engine, stereo, 2), play (fresh, stereo, 2)));
}

// The geometry changes at frame boundaries only, the reading positions with every sample. Catches a read or a write outside
// the frames and windows (with the address sanitizer) and a ring left with stale sound at a change of span.
TEST (PitchShiftEngine, StaysFiniteAndBoundedWhateverTheRatiosDo)
{
    const auto random = whiteNoise (66150, noiseSeed, 1.0);

    for (const std::size_t every : { 1u, 100u, 3000u }) // samples from change to change
    {
        Samples ratios (random.size()), formantRatios (random.size());

        for (std::size_t i = 0; i < random.size(); ++i)
        {
            ratios[i] = std::exp2 (8.25f * random[i / every] - 1.7f); // 0.001 .. 94
            formantRatios[i] = std::exp2 (2.0f * random[random.size() - 1 - i / every]);
        }

        const auto output = playAlong (ratios, formantRatios, 64);
        EXPECT_TRUE (allFinite (output)) << every;
        EXPECT_LT (peak (output), 8.0f) << every;
    }
}
} // namespace tarvelline::test
