// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"
#include "tests/support/RealTimeWatch.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <mutex>

#include <malloc.h>
#include <unistd.h>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

/** Plays blocks of every awkward length, with what `midi` holds in each, and bypassed too. */
void expectCleanBlocks (ProcessorRig& rig, const juce::MidiBuffer& midi)
{
    const auto noise = whiteNoise (8192);

    for (const auto size : { 512, 1, 0, 64, 8192, 2048 })
        for (const auto bypassed : { false, true })
        {
            juce::AudioBuffer<float> block (rig.processor.getTotalNumInputChannels(), size);
            auto events = midi;

            for (int c = 0; c < block.getNumChannels(); ++c)
                block.copyFrom (c, 0, noise.data(), size);

            const auto process = [&]
            {
                if (bypassed)
                    rig.processor.processBlockBypassed (block, events);
                else
                    rig.processor.processBlock (block, events);
            };
            const auto [allocations, locks, systemCalls] = watchRealTime (process);
            EXPECT_EQ (allocations, 0) << size << " samples";
            EXPECT_EQ (locks, 0) << size << " samples";
            EXPECT_EQ (systemCalls, 0) << size << " samples";
        }
}

// A watch that is blind would pass the test below.
TEST (RealTime, WatchSeesAllocationsLocksAndSystemCalls)
{
    if (! TARVELLINE_REAL_TIME_WATCH)
        GTEST_SKIP() << "a sanitizer stands in the place of the watch";

    std::mutex mutex;
    std::vector<int> numbers;
    EXPECT_EQ (watchRealTime ([&] { numbers.resize (1000); }).allocations, 1);
    EXPECT_EQ (watchRealTime ([&] { const std::scoped_lock lock (mutex); }).locks, 1);
    EXPECT_EQ (watchRealTime ([] { getppid(); }).systemCalls, seesSystemCalls() ? 1 : 0);
}

// A vector that grows on the first note, a message that is copied to the heap, a parameter found through a locked map. A
// range selector that a host moves takes the framework's own listener lock, and nothing else.
TEST (RealTime, NoBlockAllocatesLocksOrCallsTheSystem)
{
    juce::MidiBuffer midi;

    for (int i = 0; i < 300; ++i) // notes of eight voices and more, releases, bends
    {
        midi.addEvent (juce::MidiMessage::noteOn (1, 40 + i % 12, 1.0f), i);
        midi.addEvent (juce::MidiMessage::pitchWheel (1, 50 * i), i);
        midi.addEvent (juce::MidiMessage::noteOff (1, 40 + i % 7), i + 1);
    }

    const std::vector<juce::uint8> longSysex (2000, 0x11);
    midi.addEvent (juce::MidiMessage::createSysExMessage (longSysex.data(), 2000), 0);

    for (const auto transpose : { 1.0f, 0.0f })
        for (const auto& [rate, channels] : { std::pair { 44100.0, 2 }, { 192000.0, 1 } })
        {
            SCOPED_TRACE (testing::Message() << transpose << ", " << channels << " channels, " << rate);
            ProcessorRig rig (rate, channels);
            rig.set (midiOptions, transpose);
            expectCleanBlocks (rig, midi); // unprepared
            rig.prepare();
            rig.processor.bendSteps = 12.0;

            rig.set (mainGravityPar, 1.0f); // swift enough to sweep the whole span, up and down, in these blocks

            for (const auto& [timbre, wheel] : { std::pair { 1.0f, 0.0f }, { 0.0f, 1.0f } })
            {
                const auto range = watchRealTime ([&, to = 5.0f * timbre] { rig.set (mainRange, to); });
                EXPECT_EQ (range.allocations + range.systemCalls, 0);
                rig.set (mainRange, 5.0f);
                rig.set (toggleSize, timbre);
                rig.set (timbWheelPar, 0.9f);
                rig.set (mainWheelPar, wheel);
                expectCleanBlocks (rig, midi);
                rig.processor.midiTransposeMode = ! rig.processor.midiTransposeMode;
                expectCleanBlocks (rig, {});
            }
        }
}

// Memory that is not given back: an engine, a listener, a table a life. 1,000 lives, eight at a time.
TEST (RealTime, LivesLeaveNoMemory)
{
    const auto live = []
    {
        std::array<std::unique_ptr<ProcessorRig>, 8> rigs;

        for (auto& rig : rigs)
        {
            rig = std::make_unique<ProcessorRig>();
            rig->prepare();
            rig->playBlock (64);
        }
    };

    live(); // what the framework makes once
    const auto before = mallinfo2().uordblks;

    for (int i = 0; i < 125; ++i)
        live();

    EXPECT_LT (mallinfo2().uordblks, before + 65536); // bytes
}
} // namespace
} // namespace tarvelline::test
