// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

constexpr int latency = 2048; // samples at 44.1 kHz

Samples delayed (const Samples& input, int by = latency)
{
    auto result = silence (by);
    result.insert (result.end(), input.begin(), input.end() - by);
    return result;
}

Samples constant (int length, float value) { return Samples (static_cast<std::size_t> (length), value); }

class BlockSplit : public testing::TestWithParam<int>
{
};

// Anything that is done once a block instead of once a sample, and state that is lost or counted twice at a block's edge;
// also a block larger than the 512 samples that were announced.
TEST_P (BlockSplit, GivesTheSameBits)
{
    for (const auto transpose : { true, false })
    {
        const auto playIn = [transpose] (int blockSize)
        {
            ProcessorRig rig;
            rig.set (midiOptions, transpose ? 1.0f : 0.0f);
            rig.set (toggleSize, 1.0f);
            rig.prepare();
            rig.set (mainWheelPar, 0.9f);
            rig.set (timbWheelPar, 0.3f);
            rig.set (mixerPar, 0.8f);
            rig.processor.outputGain = 0.0f;
            rig.send ({ 0x90, 67, 100 });
            return rig.play (whiteNoise (40000), blockSize);
        };

        EXPECT_TRUE (sameBits (playIn (GetParam()), playIn (1000))) << (transpose ? "transposing" : "voices");
    }
}

INSTANTIATE_TEST_SUITE_P (Sizes, BlockSplit, testing::Values (1, 64, 441, 512, 4096, 40000));

// Mix: a law that is not linear while the wheel is off its centre, or a dry signal that is not the input, bit for bit.
TEST (Mix, IsLinearBetweenTheDelayedInputAndTheShiftedSignal)
{
    const auto input = whiteNoise (20000);
    const auto playAt = [&] (float mix)
    {
        ProcessorRig rig;
        rig.set (mainWheelPar, 0.75f);
        rig.set (mixerPar, mix);
        rig.prepare();
        return rig.play (input);
    };

    const auto wet = playAt (1.0f), dry = playAt (0.0f), mixed = playAt (0.3f);
    EXPECT_TRUE (sameBits (dry, delayed (input)));
    ASSERT_GT (levelDb (wet), -20.0);

    auto expected = silence (20000);

    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = 0.3f * wet[i] + 0.7f * dry[i];

    EXPECT_GT (signalToDifferenceDb (mixed, expected), 130.0);
}

// At rest in the centre the wet path must go: the input comes out bit for bit after 50 ms, whatever the mixer says. When
// the wheel leaves, the two must hand over in 50 ms without a dip of the dry share, which half a mix would otherwise have.
TEST (DryCrossfade, TakesFiftyMillisecondsEitherWay)
{
    for (const auto rate : { 44100.0, 96000.0 })
    {
        const auto fade = static_cast<int> (rate / 20.0), n = rate > 48000.0 ? 4096 : 2048;
        const auto playAt = [&] (float mix)
        {
            ProcessorRig rig (rate);
            rig.set (mixerPar, mix);
            rig.prepare();
            auto output = rig.play (constant (fade + n + 500, 0.5f));
            rig.set (mainWheelPar, 0.75f);
            const auto leaving = rig.play (constant (2 * fade, 0.5f));
            output.insert (output.end(), leaving.begin(), leaving.end());
            return output;
        };

        // out (mix) = (1 - x) wet mix + max (1 - mix, x) dry, so that out (1/2) - out (1) / 2 shows x without the wet part.
        const auto half = playAt (0.5f), full = playAt (1.0f);
        const auto leave = fade + n + 500;
        auto worst = 0.0;

        for (int i = n; i < static_cast<int> (half.size()); ++i)
        {
            const auto x =
                i < leave ? std::min (1.0, (i + 1.0) / fade) : std::max (0.0, 1.0 - (i - leave + 1.0) / fade);
            const auto at = static_cast<std::size_t> (i);
            const auto share = static_cast<double> (half[at] - 0.5f * full[at]) / 0.5;
            worst = std::max (worst, std::abs (share - (std::max (0.5, x) - 0.5 * x)));
        }

        EXPECT_LT (worst, 1.0e-4) << rate;

        for (auto i = static_cast<std::size_t> (std::max (fade, n)); i < static_cast<std::size_t> (leave); ++i)
            ASSERT_EQ (full[i], 0.5f) << i;
    }
}

// Voice mode without a note is silence, however much the wheels rest in the centre; and the dry signal must fade out when
// an editor switches to it.
TEST (DryCrossfade, IsOutInVoiceMode)
{
    ProcessorRig rig;
    rig.prepare();
    const auto input = whiteNoise (8000);
    ASSERT_GT (levelDb (rig.play (input)), -20.0);
    rig.processor.midiTransposeMode = false;
    const auto output = rig.play (input);
    EXPECT_EQ (peak (std::span (output).subspan (2206)), 0.0f);
    EXPECT_GT (peak (std::span (output).first (2000)), 0.0f);
}

// A master fade counted in blocks, or one that overshoots full scale.
TEST (OutputGain, RisesOverAFifthOfASecond)
{
    for (const auto rate : { 44100.0, 192000.0 })
    {
        ProcessorRig rig (rate);
        rig.set (mixerPar, 0.0f);
        rig.prepare();
        rig.play (constant (8192, 1.0f));
        rig.processor.outputGain = 0.0f;
        const auto fade = static_cast<int> (rate / 5.0);
        const auto output = rig.play (constant (fade + 100, 1.0f));

        for (int i = 0; i < fade + 100; ++i)
            ASSERT_NEAR (output[static_cast<std::size_t> (i)], std::min (1.0, (i + 1.0) / fade), 2.0e-4) << i;

        EXPECT_EQ (output.back(), 1.0f);
    }
}

// Bypass: a second delay line of its own (the sound would jump), wheels that go on, or MIDI that is obeyed.
TEST (Bypass, ContinuesTheDrySignalAndStopsTheRest)
{
    ProcessorRig rig;
    rig.set (mixerPar, 0.0f);
    rig.prepare();
    rig.set (mainWheelPar, 1.0f);
    const auto input = whiteNoise (9000);
    Samples output;

    for (const auto& [start, bypassed] : { std::pair { 0, false }, { 3000, true }, { 6000, false } })
    {
        const double point = rig.processor.mainWheel.point;

        if (bypassed)
            rig.send ({ 0xe0, 0, 0 });

        const auto part = rig.play ({ input.begin() + start, input.begin() + start + 3000 }, 256, bypassed);
        output.insert (output.end(), part.begin(), part.end());
        EXPECT_EQ (rig.processor.mainWheel.point == point, bypassed);
        rig.midi.clear();
    }

    EXPECT_TRUE (sameBits (output, delayed (input)));
    EXPECT_EQ (rig.get (mainWheelPar), 1.0f);
}

// The timbre wheel that keeps swinging after it went out of use; or one that is stopped when it comes into use.
TEST (ToggleSize, PutsTheTimbreWheelToRestWhenItGoesOff)
{
    ProcessorRig rig;
    rig.prepare();
    auto& wheel = rig.processor.timbWheel;

    for (const auto on : { 0.3f, 0.0f, 0.0f })
    {
        const auto wasOn = on == 0.0f && rig.get (toggleSize) != 0.0f;
        rig.set (timbWheelPar, rig.get (timbWheelPar) > 0.5f ? 0.2f : 0.9f);
        rig.playBlock (100);
        ASSERT_NE (wheel.point, wheel.target);
        rig.set (toggleSize, on);
        rig.playBlock (0);
        EXPECT_EQ (wheel.point == wheel.target, wasOn);
    }
}

// Timbre: a wheel that is heard while it is out of use, that moves the pitch too, or the wrong way round.
TEST (Timbre, MovesTheEnvelopeAndOnlyWhenInUse)
{
    const auto tone = harmonicTone (220.0, 44100.0, 1.0, 40, 0.3);
    const auto playAt = [&] (float inUse, float timbre)
    {
        ProcessorRig rig;
        rig.set (toggleSize, inUse);
        rig.set (timbRange, 4.0f); // 24 semitones
        rig.set (mainWheelPar, 0.75f);
        rig.set (timbWheelPar, timbre);
        rig.prepare();
        const auto output = rig.play (tone);
        return Samples (output.begin() + 10000, output.begin() + 42768);
    };

    const auto unused = playAt (0.0f, 0.5f), same = playAt (0.01f, 0.625f), down = playAt (1.0f, 0.25f),
               up = playAt (1.0f, 0.75f);
    EXPECT_TRUE (sameBits (unused, playAt (0.0f, 1.0f)));
    EXPECT_TRUE (sameBits (unused, same)) << "the same shift for pitch and timbre is an envelope left where it is";

    for (auto* output : { &unused, &down, &up })
        EXPECT_NEAR (centsBetween (220.0, frequencyHz (*output, 44100.0)), upThreeCents, 0.05);

    const auto centroid = [] (const Samples& s) { return spectralCentroidHz (s, 44100.0); };
    EXPECT_LT (centroid (down), 0.95 * centroid (unused)); // measured: 508 against 691 Hz
    EXPECT_GT (centroid (up), 1.03 * centroid (unused));   // measured: 728 Hz
}

// A value or a sample that is not a number must be gone when its cause is: from wheels, fades, phases and rings.
TEST (BadInput, DoesNotStick)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();

    for (const auto position : { 0.25f, 0.5f, 0.75f })
        for (const auto bad : { nan, infinity, -infinity, 3.0e38f })
        {
            SCOPED_TRACE (testing::Message() << position << ", " << bad);
            ProcessorRig rig;
            rig.set (toggleSize, 1.0f);
            rig.set (mainWheelPar, position);
            rig.prepare();
            auto input = sine (440.0, 44100.0, 2.0, 0.5);
            input[5000] = bad;
            const auto output = rig.play (input);
            const auto later = std::span (output).subspan (50000, 32768);
            ASSERT_TRUE (allFinite (later));
            EXPECT_NEAR (centsBetween (440.0, frequencyHz (later, 44100.0)), (position * 4.0f - 2.0f) * upThreeCents,
                         0.05);
        }

    ProcessorRig rig;
    rig.prepare();
    rig.set (mainWheelPar, 0.75f);

    for (auto* parameter : rig.processor.getParameters())
    {
        const auto good = parameter->getValue();
        parameter->setValueNotifyingHost (nan);
        EXPECT_TRUE (allFinite (rig.play (whiteNoise (5000)))) << parameter->getName (100);
        parameter->setValueNotifyingHost (good);
    }

    rig.play (silence (44100));
    rig.set (mainRange, 3.0f);
    rig.set (mainWheelPar, 0.75f);
    const auto output = rig.play (sine (440.0, 44100.0, 2.0, 0.5));
    EXPECT_NEAR (centsBetween (440.0, frequencyHz (std::span (output).last (32768), 44100.0)), upThreeCents, 0.05);
}

// Silence after sound that gets slow, and a floating-point mode that is left behind in the host's thread.
TEST (Denormals, AreFlushedDuringABlockOnly)
{
    ProcessorRig rig;
    rig.set (mainWheelPar, 0.25f);
    rig.prepare();
    auto input = whiteNoise (20000);
    input.resize (80000, 1.0e-39f);
    EXPECT_TRUE (noneSubnormal (rig.play (input)));
    EXPECT_FALSE (juce::FloatVectorOperations::areDenormalsDisabled());
}
} // namespace
} // namespace tarvelline::test
