// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/PitchShiftEngine.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>

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

constexpr double rate = setups[0].rate; // of the tests that need one rate only
constexpr int frame = setups[0].frameSize;

PitchShiftEngine engineAt (float pitchRatio, float formantRatio = 1.0f, const Setup& setup = setups[0])
{
    PitchShiftEngine engine;
    engine.prepare (setup.frameSize, setup.frequencyScale, static_cast<float> (setup.rate));
    engine.setRatios (pitchRatio, formantRatio);
    return engine;
}

float ratioOf (double semitones) { return static_cast<float> (std::exp2 (semitones / 12.0)); }

Samples play (PitchShiftEngine& engine, Signal input)
{
    Samples output (input.size());

    for (std::size_t i = 0; i < input.size(); ++i)
        engine.processFrame (&input[i], &output[i], 1);

    return output;
}

Samples play (PitchShiftEngine&& engine, Signal input) { return play (engine, input); }

struct Stereo
{
    Samples left, right;
};

Stereo play (PitchShiftEngine& engine, Signal left, Signal right)
{
    Stereo output { Samples (left.size()), Samples (left.size()) };

    for (std::size_t i = 0; i < left.size(); ++i)
    {
        const float in[] = { left[i], right[i] };
        float out[2];
        engine.processFrame (in, out, 2);
        output.left[i] = out[0];
        output.right[i] = out[1];
    }

    return output;
}

/** A second of partials, noise and clicks. */
Samples material()
{
    const auto length = lengthOf (1.0, rate);
    return mix (mix (harmonicTone (147.0, rate, 1.0, 20, 0.3), whiteNoise (length, noiseSeed, 0.05)),
                clickTrain (length, 5000));
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

// Catches a wrong hop, span or resampling, and phases that advance by another amount than the hop, in either channel. The
// level catches wrong gains and windows, and bins that lose their phase relation to their neighbours.
TEST_P (EngineAtRate, ASteadyToneIsShiftedByTheRatioOfTheHops)
{
    const auto setup = GetParam();
    const auto start = static_cast<std::size_t> (0.15 * setup.rate);
    const double hertz[] = { 1000.0, 1370.0 };
    const auto left = sine (hertz[0], setup.rate, 0.6, 0.5), right = sine (hertz[1], setup.rate, 0.6, 0.5);

    for (const auto ratio : { 0.25f, ratioOf (-12), ratioOf (-7), ratioOf (-3), ratioOf (-0.01), 1.0f, ratioOf (0.01),
                              ratioOf (3), ratioOf (7), ratioOf (12), 4.0f })
    {
        SCOPED_TRACE (ratio);

        // A rise starts on a tone that sounds already: its bins agree in phase and go on agreeing. Not so at an onset, nor
        // in a fall, which moves the tone to other bins: those start one by one, and partly cancel.
        auto engine = engineAt (std::min (ratio, 1.0f), 1.0f, setup);
        play (engine, Signal (left).first (start), Signal (right).first (start));
        engine.setRatios (ratio, 1.0f);
        const auto output = play (engine, Signal (left).subspan (start), Signal (right).subspan (start));
        const auto lowest = ratio < 0.5f ? -3.6 : -1.2;

        for (const auto* channel : { &output.left, &output.right })
        {
            const auto steady = Signal (*channel).subspan (start);
            const auto expected = hertz[channel == &output.right] * soundingRatio (setup.frameSize, ratio);
            const auto levelChange =
                componentDb (steady, expected, setup.rate) - componentDb (left, hertz[0], setup.rate);

            EXPECT_NEAR (centsBetween (expected, frequencyHz (steady, setup.rate)), 0.0, 0.005); // measured: 0.0009
            EXPECT_GT (levelChange, ratio >= 1.0f ? unityGainDb - 0.1 : lowest); // measured: 0.28 and -3.3, -0.88
            EXPECT_LT (levelChange, ratio >= 1.0f ? unityGainDb + 0.1 : unityGainDb + 0.75); // measured: 0.35 and 0.81
        }
    }
}

// Catches a ring read one sample or one hop off: the delayed dry signal is mixed with this output.
TEST_P (EngineAtRate, AnImpulseAtRatioOneLeavesAfterExactlyOneFrame)
{
    const auto setup = GetParam();

    for (const auto position : { 0, 1, setup.frameSize - 1, setup.frameSize + 37, 2 * setup.frameSize + 1234 })
    {
        const auto output = play (engineAt (1.0f, 1.0f, setup), impulse (5 * setup.frameSize, position));
        EXPECT_EQ (peakIndex (output), static_cast<std::size_t> (position + setup.frameSize));
        EXPECT_NEAR (peak (output), 1.0f, 0.2f); // measured: 0.85 .. 1.14, by where in a hop it falls
    }
}

// A formant at 1800 Hz on partials of 110 Hz. Catches an envelope that moves the other way (its ratio inverted), moves along
// with the pitch, or takes the partials with it.
TEST (PitchShiftEngine, FormantRatioMovesTheEnvelopeAndNotThePitch)
{
    auto vowel = silence (lengthOf (0.8, rate));

    for (int n = 1; n <= 60; ++n)
        vowel = mix (vowel, sine (110.0 * n, rate, 0.8, 0.2 / (1.0 + std::pow ((110.0 * n - 1800.0) / 200.0, 2.0))));

    const auto centroid = spectralCentroidHz (vowel, rate);

    for (const auto pitch : { -6, 0, 6 })
        for (const auto timbre : { -6, 0, 6 })
        {
            auto engine = engineAt (ratioOf (pitch), ratioOf (pitch - timbre));
            const auto output = play (engine, vowel);
            const auto settled = Signal (output).subspan (4 * frame);
            EXPECT_NEAR (spectralCentroidHz (settled.first (6 * frame), rate) / centroid,
                         static_cast<double> (ratioOf (timbre)), 0.03);

            const auto partial = frequencyHz (settled, rate) / (110.0 * soundingRatio (frame, ratioOf (pitch)));
            EXPECT_NEAR (centsBetween (std::round (partial), partial), 0.0, 0.05) << pitch << ' ' << timbre;
        }
}

// Catches scratch buffers shared between channels, one channel's magnitudes used for both, and onsets taken by each
// channel for itself, which moves the stereo image.
TEST (PitchShiftEngine, ChannelsShareTheirOnsetsAndNothingElse)
{
    for (const auto ratio : { 0.7f, 1.0f, 1.5f })
    {
        auto mono = engineAt (ratio, 1.2f), same = engineAt (ratio, 1.2f), half = engineAt (ratio, 1.0f);
        const auto left = material();
        auto quieter = left;

        for (auto& sample : quieter)
            sample *= 0.5f;

        const auto both = play (same, left, left);
        EXPECT_TRUE (sameBits (both.left, both.right));
        EXPECT_TRUE (sameBits (both.left, play (mono, left)));

        auto image = play (half, left, quieter);

        for (auto& sample : image.right)
            sample *= 2.0f;

        EXPECT_GT (signalToDifferenceDb (image.right, image.left), 100.0);

        auto oneSided = engineAt (ratio);
        EXPECT_LT (peak (play (oneSided, left, silence (static_cast<int> (left.size()))).right),
                   1.0e-9f); // measured: 1.4e-10
    }
}

// Clicks well above a sounding chord, in the second channel alone. Catches onsets that are missed, that are looked for in one
// channel only, or that do not restart the phases: the clicks then smear.
TEST (PitchShiftEngine, ClicksStaySharpAboveASoundingChord)
{
    constexpr int period = 3 * frame, length = 12 * period;
    const auto seconds = (length + 0.5) / rate;
    const auto bed = mix (whiteNoise (length, noiseSeed, 0.02), harmonicTone (196.0, rate, seconds, 20, 0.05));
    const auto input = mix (bed, clickTrain (length, period));

    for (const auto& [ratio, sharpness] : { std::pair { 0.7f, 0.45f }, { 1.3f, 0.3f } }) // smeared: 0.04 and 0.12
    {
        auto engine = engineAt (ratio);
        const auto output = play (engine, silence (length), input).right;
        float sum = 0.0f;

        for (int k = 2; k < 12; ++k)
            sum += peak (Signal (output).subspan (static_cast<std::size_t> (k * period), period));

        EXPECT_GT (sum / 10.0f, sharpness) << ratio; // measured: 0.54 and 0.36
    }
}

// The output ring is never cleared as it is read: what a longer span adds onto was heard a ring's length ago. Catches a change of
// span that leaves it there; the old sound would return at half its level.
TEST (PitchShiftEngine, AChangeOfSpanUncoversNoOldSound)
{
    for (const auto& [before, after] : { std::pair { 2.0f, 1.0f }, { 2.0f, 0.5f }, { 4.0f, 0.5f } })
    {
        auto engine = engineAt (before);
        play (engine, whiteNoise (8 * frame));
        play (engine, silence (2 * frame));
        engine.setRatios (after, 1.0f);
        EXPECT_LT (peak (play (engine, silence (4 * frame))), 1.0e-9f) << before << ' ' << after;
    }
}

// Catches missing guards: NaNs from 0 / 0, and arithmetic that creeps along on denormals for as long as silence lasts.
TEST (PitchShiftEngine, SilenceStaysSilentAndFreeOfDenormals)
{
    for (const auto ratio : { 0.5f, 1.0f, 1.5f })
        for (const auto formant : { 1.0f, 1.3f })
        {
            auto engine = engineAt (ratio, formant);

            for (const auto& before : { silence (1), material() })
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
    constexpr auto inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
    auto input = material();
    input.resize (6 * frame);

    for (const auto& [asked, held] : { std::pair { 0.0f, 1.0e-10f },
                                       { -1.0f, 1.0e-10f },
                                       { -inf, 1.0e-10f },
                                       { nan, 1.0e-10f },
                                       { 96.5f, 96.0f },
                                       { 1.0e9f, 96.0f },
                                       { inf, 96.0f } })
        EXPECT_TRUE (sameBits (play (engineAt (asked), input), play (engineAt (held), input))) << asked;

    for (const auto& [asked, held] : { std::pair { -1.0f, 0.001f }, { -inf, 0.001f }, { nan, 0.001f } })
        EXPECT_TRUE (sameBits (play (engineAt (1.5f, asked), input), play (engineAt (1.5f, held), input))) << asked;

    EXPECT_TRUE (allFinite (play (engineAt (1.5f, inf), input)));

    auto engine = engineAt (0.0f); // no bin is left below the Nyquist frequency
    play (engine, input);
    EXPECT_EQ (peak (play (engine, input)), 0.0f);
    EXPECT_GT (peak (play (engineAt (96.0f), input)), 1.0e-3f); // the ten bins that are left still sound
}

// An infinity makes NaNs of some phases, and while the bin stays stable nothing restarts them: one bad sample would silence
// the effect for ever. Catches samples that reach the rings unchecked; the loudest one that counts is +80 dB.
TEST (PitchShiftEngine, WhatIsNoSampleCountsAsSilence)
{
    constexpr auto inf = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();

    for (const auto ratio : { 0.5f, 1.0f, 1.5f })
        for (const auto formant : { 1.0f, 1.3f })
        {
            auto input = material(), broken = input;

            for (std::size_t i = 20000; const auto bad : { nan, inf, -inf, 1.0e30f, -1.0e5f })
            {
                input[i] = 0.0f;
                broken[i] = bad;
                i += frame / 3;
            }

            const auto expected = play (engineAt (ratio, formant), input);
            constexpr auto restart = static_cast<std::size_t> (20000 + 2 * frame); // the input holds them until later
            EXPECT_TRUE (sameBits (Signal (play (engineAt (ratio, formant), broken)).first (restart),
                                   Signal (expected).first (restart)))
                << ratio << ' ' << formant;

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
    auto engine = engineAt (1.7f, 1.2f);
    play (engine, material(), whiteNoise (lengthOf (1.0, rate)));
    engine.setRatios (1.0f, 1.0f);
    play (engine, Signal (material()).first (10001)); // ends inside a hop
    engine.reset();

    auto fresh = engineAt (1.0f);
    const auto actual = play (engine, material(), whiteNoise (lengthOf (1.0, rate)));
    const auto expected = play (fresh, material(), whiteNoise (lengthOf (1.0, rate)));
    EXPECT_TRUE (sameBits (actual.left, expected.left));
    EXPECT_TRUE (sameBits (actual.right, expected.right));
}

// The geometry changes at frame boundaries only, the reading positions with every sample. Catches a read or a write outside
// the frames and windows (with the address sanitizer) and a ring left with stale sound at a change of span.
TEST (PitchShiftEngine, StaysFiniteAndBoundedWhateverTheRatiosDo)
{
    std::mt19937 generator (noiseSeed);
    const auto random = [&generator] (double lowest, double highest) {
        return static_cast<float> (lowest
                                   * std::pow (highest / lowest, static_cast<double> (generator()) / 4294967296.0));
    };

    for (const auto every : { 1, 100, 3000 }) // samples from change to change
    {
        auto engine = engineAt (1.0f);
        const auto input = whiteNoise (lengthOf (1.5, rate));
        Samples output (input.size());

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            if (i % static_cast<std::size_t> (every) == 0)
                engine.setRatios (random (1.0e-3, 96.0), random (0.25, 4.0));

            engine.processFrame (&input[i], &output[i], 1);
        }

        EXPECT_TRUE (allFinite (output)) << every;
        EXPECT_LT (peak (output), 8.0f) << every;
    }
}
} // namespace tarvelline::test
