// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numeric>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

// Anything that is done once a block instead of once a sample, and state that is lost or counted twice at a block's edge;
// also a block larger than the 512 samples that were announced.
TEST (BlockSplit, GivesTheSameBits)
{
    for (const auto transpose : { 1.0f, 0.0f })
    {
        const auto playIn = [transpose] (int blockSize)
        {
            ProcessorRig rig;
            rig.set (midiOptions, transpose);
            rig.set (toggleSize, 1.0f);
            rig.prepare();
            rig.set (mainWheelPar, 0.9f);
            rig.set (timbWheelPar, 0.3f);
            rig.set (mixerPar, 0.8f);
            rig.processor.outputGain = 0.0f;
            rig.send ({ 0x90, 67, 100 });
            return rig.play (whiteNoise (30000), blockSize);
        };
        const auto expected = playIn (1000);

        for (const auto size : { 1, 64, 441, 512, 4096, 30000 })
            EXPECT_TRUE (sameBits (playIn (size), expected))
                << size << (transpose > 0.0f ? ", transposing" : ", voices");
    }
}

// A master fade counted in blocks, or one that overshoots full scale.
TEST (OutputGain, RisesOverAFifthOfASecond)
{
    for (const auto rate : { 44100.0, 192000.0 })
    {
        ProcessorRig rig (rate);
        rig.set (mixerPar, 0.0f);
        rig.prepare();
        rig.play (Samples (8192, 1.0f));
        rig.processor.outputGain = 0.0f;
        const auto fade = static_cast<int> (rate / 5.0);
        const auto output = rig.play (Samples (static_cast<std::size_t> (fade + 100), 1.0f));

        for (int i = 0; i < fade + 100; ++i)
            ASSERT_NEAR (output[static_cast<std::size_t> (i)], std::min (1.0, (i + 1.0) / fade), 2.0e-4) << i;

        EXPECT_EQ (output.back(), 1.0f);
    }
}

// A dry share that dips, or that the mix sets while the dry signal hands over; and a hand-over that asks after one wheel.
TEST (Mix, IsLinearAndHandsOverInFiftyMilliseconds)
{
    const auto input = sine (300.0, 44100.0, 0.5, 0.5);

    for (const auto* wheel : { mainWheelPar, timbWheelPar })
    {
        const auto playAt = [&] (float mix)
        {
            ProcessorRig rig;
            rig.set (mixerPar, mix);
            rig.prepare();
            rig.play (silence (4410)); // both wheels at rest: all dry
            rig.set (wheel, 0.7f);
            return rig.play (input, 1);
        };
        const auto dry = playAt (0.0f), wet = playAt (1.0f), mixed = playAt (0.4f);
        EXPECT_LT (signalToDifferenceDb (wet, dry), 40.0) << wheel;

        for (std::size_t i = 0; i < input.size(); ++i)
        {
            const auto share = std::max (1.0f - static_cast<float> (i + 1) / 2205.0f, 0.0f);
            ASSERT_NEAR (mixed[i], 0.4f * (wet[i] - share * dry[i]) + std::max (0.6f, share) * dry[i], 1.0e-4f)
                << i; // measured: 4e-5
        }
    }
}

// The timbre wheel that keeps swinging after it went out of use; or one that is stopped when it comes into use.
TEST (ToggleSize, PutsTheTimbreWheelToRestWhenItGoesOff)
{
    ProcessorRig rig;
    rig.prepare();
    rig.set (timbWheelPar, 0.9f);
    auto& wheel = rig.processor.timbWheel;

    for (const auto inUse : { 0.3f, 0.0f })
    {
        rig.playBlock (100);
        ASSERT_NE (wheel.point, wheel.target);
        rig.set (toggleSize, inUse);
        rig.playBlock (0);
        EXPECT_EQ (wheel.point == wheel.target, inUse == 0.0f);
    }
}

/** A processor at some setting: both channels play a tone in one block of two seconds, in which one of them may be bad. */
struct PoisonRig : ProcessorRig
{
    explicit PoisonRig (const std::map<const char*, float>& settings)
    {
        for (const auto& [id, value] : settings)
            set (id, value);

        prepare();
        send ({ 0x90, 64, 100 });
    }

    const juce::AudioBuffer<float>& playTone (int channel = 0, float bad = 0.0f, int badSamples = 0)
    {
        for (int c = 0; c < 2; ++c)
            sound.copyFrom (c, 0, tone.data(), length);

        juce::FloatVectorOperations::fill (sound.getWritePointer (channel, badStart), bad, badSamples);
        processor.processBlock (sound, midi);
        return sound;
    }

    static constexpr int length = 88200, badStart = 20000;
    const Samples tone = sine (440.0, 44100.0, 2.0, 0.5);
    juce::AudioBuffer<float> sound { 2, length };
};

/** Every 100 ms from a sample on within 0.5 dB, all of it within a cent. */
void expectAlike (const juce::AudioBuffer<float>& actual, const juce::AudioBuffer<float>& expected, int from)
{
    for (int c = 0; c < 2; ++c)
    {
        const auto end = [from, c] (const auto& sound)
        { return Signal (sound.getReadPointer (c, from), static_cast<std::size_t> (sound.getNumSamples() - from)); };
        ASSERT_TRUE (allFinite (end (actual)));
        EXPECT_NEAR (centsBetween (frequencyHz (end (expected), 44100.0), frequencyHz (end (actual), 44100.0)), 0.0,
                     1.0);

        for (std::size_t i = 0; i + 4410 <= end (actual).size(); i += 4410) // measured: 0.4
            EXPECT_NEAR (levelDb (end (actual).subspan (i, 4410)), levelDb (end (expected).subspan (i, 4410)), 0.5)
                << i;
    }
}

class Poison : public testing::TestWithParam<std::map<const char*, float>>
{
};

INSTANTIATE_TEST_SUITE_P (Settings, Poison,
                          testing::Values (std::map<const char*, float> { { mainWheelPar, 0.75f } },
                                           std::map<const char*, float> { { mainWheelPar, 0.2f }, { mixerPar, 0.8f } },
                                           std::map<const char*, float> { { mainWheelPar, 0.75f },
                                                                          { toggleSize, 1.0f },
                                                                          { timbWheelPar, 0.1f } },
                                           std::map<const char*, float> { { midiOptions, 0.0f }, { toggleSize, 1.0f } },
                                           std::map<const char*, float> { { mixerPar, 0.0f } }));

/** The least correlation and the largest difference in dB of two channels' 10 ms pieces. */
std::pair<double, double> likeness (Signal actual, Signal expected)
{
    constexpr std::size_t piece = 441;
    auto correlation = 1.0, difference = 0.0;

    for (std::size_t i = 0; i + piece <= actual.size(); i += piece)
    {
        const auto x = actual.subspan (i, piece), y = expected.subspan (i, piece);
        const auto power = [] (Signal a, Signal b) { return std::inner_product (a.begin(), a.end(), b.begin(), 0.0); };
        correlation = std::min (correlation, power (x, y) / std::sqrt (power (x, x) * power (y, y)));
        difference = std::max (difference, std::abs (levelDb (x) - levelDb (y)));
    }

    return { correlation, difference };
}

// A sample that is none counts as 0 and nothing else: it stays in no ring, phase, fade or magnitude, and moves the phases
// of neither channel. After a single one the sound goes on as if nothing had been.
TEST_P (Poison, LeavesTheSoundWithTheSamples)
{
    const auto clean = PoisonRig (GetParam()).playTone();

    for (const auto& [channel, samples] : { std::pair { 0, 1 }, { 0, 5000 }, { 1, 1024 } })
    {
        PoisonRig silenced (GetParam());
        const auto& expected = silenced.playTone (channel, 0.0f, samples);

        for (const auto bad : { std::nanf (""), HUGE_VALF, -HUGE_VALF, 1.0e38f, 1.0e-39f })
        {
            SCOPED_TRACE (testing::Message() << bad << ", " << samples << " samples of channel " << channel);
            PoisonRig rig (GetParam());
            const auto& actual = rig.playTone (channel, bad, samples);

            for (auto c = 0; c < 2; ++c)
            {
                const auto end = [c = c] (const auto& sound, int from) {
                    return Signal (sound.getReadPointer (c, from), static_cast<std::size_t> (PoisonRig::length - from));
                };
                const auto past = rig.badStart + samples + 2048; // the dry path's too

                EXPECT_TRUE (sameBits (end (actual, past), end (expected, past)));

                if (samples == 1)
                {
                    const auto [correlation, difference] =
                        likeness (end (actual, past + 4096), end (clean, past + 4096));
                    EXPECT_GT (correlation, 0.99); // measured: 0.992 with timbre, 1.000 without
                    EXPECT_LT (difference, 0.2);   // measured: 0.097, 0.001
                }
            }
        }
    }
}

// A host's value that is no number or far outside must be gone when its cause is: from wheels, coefficients and fades.
TEST_P (Poison, LeavesWheelsAndSoundWithTheValues)
{
    const auto pause = silence (132300); // the wheels swing for a while
    PoisonRig clean (GetParam());
    clean.playTone();
    clean.play (pause);
    const auto expected = clean.playTone();

    for (const auto bad : { std::nanf (""), HUGE_VALF, -1.0e38f })
    {
        SCOPED_TRACE (bad);
        PoisonRig rig (GetParam());
        rig.playTone();
        std::vector<float> good;

        for (auto* parameter : rig.processor.getParameters())
        {
            good.push_back (clean.processor.getParameters()[parameter->getParameterIndex()]->getValue());
            parameter->setValueNotifyingHost (bad);
            EXPECT_TRUE (allFinite (rig.play (whiteNoise (2000)))) << parameter->getName (100);
        }

        for (auto* parameter : rig.processor.getParameters()) // the ranges first, which move the wheels
            parameter->setValueNotifyingHost (good[static_cast<std::size_t> (parameter->getParameterIndex())]);

        rig.play (pause);
        expectAlike (rig.playTone(), expected, 3 * 2048);

        for (const auto wheel : { &TarvellineAudioProcessor::mainWheel, &TarvellineAudioProcessor::timbWheel })
            EXPECT_NEAR ((rig.processor.*wheel).point, (clean.processor.*wheel).point, 1.0e-6);
    }
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
