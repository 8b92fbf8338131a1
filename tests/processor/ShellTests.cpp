// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

// A host that is let into a layout whose channels the engine does not have.
TEST (Shell, TakesMonoOrStereoAndNothingElse)
{
    const ProcessorRig rig;

    for (int in = 0; in <= 6; ++in)
        for (int out = 0; out <= 6; ++out)
        {
            const auto inSet = juce::AudioChannelSet::canonicalChannelSet (in),
                       outSet = juce::AudioChannelSet::canonicalChannelSet (out);
            EXPECT_EQ (rig.processor.checkBusesLayoutSupported ({ { inSet }, { outSet } }),
                       in == out && (in == 1 || in == 2))
                << in << " to " << out;
        }
}

// Two parameters that a host with little room shows under one name.
TEST (Shell, ParametersHaveNamesOfTheirOwnAtAnyLength)
{
    for (const auto length : { 4, 6, 8, 12, 100 })
    {
        ProcessorRig rig;
        std::set<juce::String> names;

        for (const auto* parameter : rig.processor.getParameters())
            EXPECT_LE (names.insert (parameter->getName (length)).first->length(), length);

        EXPECT_EQ (names.size(), parameterTable.size()) << length;
    }
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
    EXPECT_EQ (rig.processor.voices.keyLit[64 - lowestKeyNote], 0);
    EXPECT_TRUE (rig.processor.voices.keysChanged);
}

// A division by the rate that leaves a wheel, a fade or a table at infinity for good, or an index far outside a table.
TEST (Shell, SurvivesAbsurdRates)
{
    for (const auto rate : { 0.0, -44100.0, std::nan (""), HUGE_VAL, 1.0e-300, 1.0e-9, 100.0, 1.0e9, 1.0e300 })
    {
        SCOPED_TRACE (rate);
        ProcessorRig rig (rate);
        rig.prepare();
        rig.set (mainWheelPar, 0.75f);
        EXPECT_TRUE (allFinite (rig.play (whiteNoise (20000))));

        rig.processor.prepareToPlay (44100.0, 512);
        const auto output = rig.play (sine (440.0, 44100.0, 1.0, 0.5));
        EXPECT_NEAR (centsBetween (440.0, frequencyHz (Signal (output).last (32768), 44100.0)), upThreeCents, 0.05);
    }
}
// A buffer, a table or a fade that a former rate leaves behind; a latency told again, or not.
TEST (Shell, IsAsNewAfterAnyOrderOfRates)
{
    ProcessorRig rig;
    HostEar host (rig.processor);
    const auto noise = whiteNoise (20000);

    for (const auto rate :
         { 8000.0, 384000.0, 384000.0, 11025.0, 96000.0, 88200.0, 192000.0, 176400.0, 16000.0, 44100.0 })
    {
        rig.processor.prepareToPlay (rate, 64);
        EXPECT_TRUE (allFinite (rig.play (noise, 777))) << rate;
    }

    EXPECT_EQ (host.latencyChanges, 6); // 2048, 8192, 2048, 4096, 8192, 2048
    rig.processor.prepareToPlay (44100.0, 64);
    rig.set (mainWheelPar, 0.75f);
    ProcessorRig fresh;
    fresh.prepare();
    fresh.set (mainWheelPar, 0.75f);
    EXPECT_TRUE (sameBits (rig.play (noise), fresh.play (noise)));
}

// A dry path that slips when a host bypasses every other block and changes their size each time; and a bypass that obeys
// MIDI.
TEST (Shell, KeepsTheLatencyThroughBypassAndBlocksOfAnySize)
{
    ProcessorRig rig;
    rig.set (mixerPar, 0.0f);
    rig.prepare();
    Samples input = whiteNoise (20000), output;

    for (std::size_t start = 0, size = 0; start < input.size(); start += size, size = (7 * size + 13) % 1500)
    {
        const auto end = std::min (start + size, input.size());
        rig.send ({ 0xe0, 0, 0 });
        rig.set (mainWheelPar, 0.5f);
        const auto block =
            rig.play ({ input.begin() + static_cast<long> (start), input.begin() + static_cast<long> (end) }, 2000,
                      size % 2 == 0);
        output.insert (output.end(), block.begin(), block.end());
        EXPECT_EQ (rig.get (mainWheelPar), size % 2 == 0 ? 0.5f : 0.0f);
    }

    EXPECT_TRUE (sameBits (Signal (output).subspan (2048), Signal (input).first (input.size() - 2048)));
}
} // namespace
} // namespace tarvelline::test
