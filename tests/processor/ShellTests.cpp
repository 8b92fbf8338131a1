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

// A wrapper that would offer us as a synthesizer, or without MIDI, or with a program list.
TEST (Shell, IsAnEffectThatListensToMidi)
{
    ProcessorRig rig;
    auto& processor = rig.processor;

    EXPECT_EQ (processor.getName(), "Tarvelline");
    EXPECT_TRUE (processor.acceptsMidi());
    EXPECT_FALSE (processor.producesMidi());
    EXPECT_FALSE (processor.isMidiEffect());
    EXPECT_TRUE (processor.hasEditor());
    EXPECT_EQ (processor.getNumPrograms(), 1);
    EXPECT_EQ (processor.getTailLengthSeconds(), 0.0);
    EXPECT_EQ (processor.getBypassParameter(), nullptr) << "the wrapper would no longer call processBlockBypassed";
    ASSERT_EQ (processor.getBusCount (true), 1);
    ASSERT_EQ (processor.getBusCount (false), 1);
    EXPECT_EQ (processor.getBus (true, 0)->getName(), "Input");
    EXPECT_EQ (processor.getBus (false, 0)->getName(), "Output");
    EXPECT_EQ (processor.getBus (true, 0)->getDefaultLayout(), juce::AudioChannelSet::stereo());
}

// A host that is let into a layout whose channels the engine does not have.
TEST (Shell, TakesMonoOrStereoAndNothingElse)
{
    const auto none = juce::AudioChannelSet::disabled(), mono = juce::AudioChannelSet::mono(),
               stereo = juce::AudioChannelSet::stereo(), surround = juce::AudioChannelSet::create5point1();
    const ProcessorRig rig;

    for (auto& in : { none, mono, stereo, surround })
        for (auto& out : { none, mono, stereo, surround })
            EXPECT_EQ (rig.processor.checkBusesLayoutSupported ({ { in }, { out } }),
                       in == out && (in == mono || in == stereo))
                << in.getDescription() << " to " << out.getDescription();
}

struct RateAndLatency
{
    double rate;
    int latency; // samples
};

class ShellLatency : public testing::TestWithParam<RateAndLatency>
{
};

// A limit on the wrong side (48000 and 96000 belong below), a latency that is not reported, or one that is not kept.
TEST_P (ShellLatency, IsReportedAndKeptByTheDryAndBypassedPaths)
{
    const auto [rate, latency] = GetParam();

    for (const auto bypassed : { false, true })
    {
        ProcessorRig rig (rate);
        rig.set (mixerPar, 0.0f);
        rig.prepare();
        EXPECT_EQ (rig.processor.getLatencySamples(), latency);

        const auto output = rig.play (impulse (latency + 100, 10), 512, bypassed);
        EXPECT_TRUE (sameBits (output, impulse (latency + 100, latency + 10)));
    }
}

INSTANTIATE_TEST_SUITE_P (Rates, ShellLatency,
                          testing::Values (RateAndLatency { 8000.0, 2048 }, RateAndLatency { 44100.0, 2048 },
                                           RateAndLatency { 48000.0, 2048 }, RateAndLatency { 48001.0, 4096 },
                                           RateAndLatency { 88200.0, 4096 }, RateAndLatency { 96000.0, 4096 },
                                           RateAndLatency { 96001.0, 8192 }, RateAndLatency { 192000.0, 8192 }),
                          [] (const auto& row) { return std::to_string (static_cast<int> (row.param.rate)); });

// A host that restarts its graph at every prepare.
TEST (Shell, TellsTheHostOnlyOfAChangedLatency)
{
    ProcessorRig rig;
    const HostEar host (rig.processor);

    rig.prepare();
    EXPECT_EQ (host.latencyChanges, 1);
    rig.prepare();
    rig.processor.prepareToPlay (48000.0, 64);
    EXPECT_EQ (host.latencyChanges, 1) << "the frame length is the same";
    rig.processor.prepareToPlay (96000.0, 64);
    EXPECT_EQ (host.latencyChanges, 2);
}

// A wheel that jumps back to the centre, or notes that hang, when the host stops and starts. The spare flag that an editor
// has not yet seen must not be lost.
TEST (Shell, PrepareKeepsTheWheelsAndEndsTheNotes)
{
    ProcessorRig rig;
    rig.set (midiOptions, 0.0f);
    rig.prepare();
    rig.send ({ 0x90, 64, 100 });
    rig.playBlock (16);
    rig.set (mainWheelPar, 0.75f);
    rig.set (timbWheelPar, 0.25f);
    ASSERT_TRUE (rig.processor.voices.slots[0].active);
    rig.prepare();

    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.point, 0.75);
    EXPECT_DOUBLE_EQ (rig.processor.timbWheel.point, 0.25);
    EXPECT_FALSE (rig.processor.voices.slots[0].active);
    EXPECT_EQ (rig.processor.voices.keyLit[64 - 36], 0);
    EXPECT_TRUE (rig.processor.voices.keysChanged);
}

// The transposition of the last note lives on in the offset and is added anew by every rest of the wheel: three times in a
// prepare (span chosen, refresh, end).
TEST (Shell, PrepareAddsTheTranspositionAgain)
{
    ProcessorRig rig;
    rig.prepare();
    rig.send ({ 0x90, 63, 100 }); // three semitones are a quarter of the span of 12
    rig.playBlock (1);
    rig.prepare();
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.point, 0.5 + 3 * 0.25);
    EXPECT_DOUBLE_EQ (rig.processor.timbWheel.point, 0.5);
}

// Stereo work that reads a second channel which is not there, or a mono bus at another pitch.
TEST (Shell, ShiftsMonoLikeStereo)
{
    for (const auto channels : { 1, 2 })
    {
        ProcessorRig rig (44100.0, channels);
        rig.set (mainWheelPar, 0.75f); // of 12 semitones: up three
        rig.prepare();
        const auto output = rig.play (sine (440.0, rig.rate, 1.0, 0.5));
        const auto steady = std::span (output).subspan (8192, 32768);

        EXPECT_NEAR (centsBetween (440.0, frequencyHz (steady, rig.rate)), upThreeCents, 0.05) << channels;
        EXPECT_NEAR (levelDb (steady), levelDb (sine (440.0, rig.rate, 1.0, 0.5)), 1.0) << channels;
    }
}

// A host that opens the editor or pushes a block before it ever prepared: nothing to read, nothing to write, no crash.
TEST (Shell, WithoutPreparationGivesSilenceOrTheInput)
{
    for (const auto bypassed : { false, true })
    {
        ProcessorRig rig;
        rig.send ({ 0x90, 60, 100 });
        rig.send ({ 0xe0, 0, 127 });
        const auto input = whiteNoise (1000);
        const auto output = rig.play (input, 64, bypassed);
        EXPECT_TRUE (allFinite (output));
        EXPECT_LE (peak (output), peak (input));
    }
}

class ShellAbsurdRate : public testing::TestWithParam<double>
{
};

// A division by the rate that leaves a wheel, a fade or a table at infinity for good, or an index far outside a table.
TEST_P (ShellAbsurdRate, IsSurvived)
{
    ProcessorRig rig (GetParam());
    rig.prepare();
    rig.set (mainWheelPar, 0.75f);
    EXPECT_TRUE (allFinite (rig.play (whiteNoise (20000))));

    rig.processor.prepareToPlay (44100.0, 512);
    EXPECT_EQ (rig.processor.getLatencySamples(), 2048);
    const auto output = rig.play (sine (440.0, 44100.0, 1.0, 0.5));
    EXPECT_NEAR (centsBetween (440.0, frequencyHz (std::span (output).subspan (8192, 32768), 44100.0)), upThreeCents,
                 0.05);
}

INSTANTIATE_TEST_SUITE_P (Rates, ShellAbsurdRate,
                          testing::Values (0.0, -44100.0, std::nan (""), std::numeric_limits<double>::infinity(),
                                           1.0e-300, 1.0, 100.0, 1.0e9, 1.0e300));
} // namespace
} // namespace tarvelline::test
