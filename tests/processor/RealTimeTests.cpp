// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"
#include "tests/support/RealTimeWatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>

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
            const auto [allocations, locks] = watchRealTime (process);
            EXPECT_EQ (allocations, 0) << size << " samples";
            EXPECT_EQ (locks, 0) << size << " samples";
        }
}

// A watch that is blind would pass the test below.
TEST (RealTime, WatchSeesAllocationsAndLocks)
{
    if (! TARVELLINE_REAL_TIME_WATCH)
        GTEST_SKIP() << "a sanitizer stands in the place of the watch";

    std::mutex mutex;
    std::vector<int> numbers;
    EXPECT_EQ (watchRealTime ([&] { numbers.resize (1000); }).allocations, 1);
    EXPECT_EQ (watchRealTime ([&] { const std::scoped_lock lock (mutex); }).locks, 1);
}

// A vector that grows on the first note, a message that is copied to the heap, a parameter found through a locked map. Not
// watched: a range selector that a host moves, during which the framework holds its own listener lock.
TEST (RealTime, NoBlockAllocatesOrLocks)
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

            for (const auto timbre : { 1.0f, 0.0f })
            {
                rig.set (toggleSize, timbre);
                rig.set (timbWheelPar, 0.9f);
                rig.set (mainWheelPar, 0.1f);
                expectCleanBlocks (rig, midi);
            }
        }
}

// A word that both threads touch without being atomic (the thread sanitizer reports it), or a setting changed in the middle
// of a block that drives the sound to infinity.
TEST (Threads, ShareTheProcessorWhileItPlays)
{
    ProcessorRig rig;
    auto& processor = rig.processor;
    rig.prepare();
    std::atomic<bool> stop { false }, finite { true };
    std::atomic<int> blocks { 0 };

    std::thread audio (
        [&]
        {
            const auto input = whiteNoise (256);

            for (juce::uint8 note = 40; ! stop; note = note < 80 ? static_cast<juce::uint8> (note + 3) : 40)
            {
                rig.send ({ 0x90, note, 100 });
                rig.send ({ 0x80, static_cast<juce::uint8> (note - 3), 0 });
                rig.send ({ 0xe0, 0, note });
                finite = finite && allFinite (rig.play (input, 64));
                ++blocks;
            }
        });

    // What a host and an editor do, over and over.
    for (int round = 0; round < 60 || blocks < 60; ++round)
    {
        const auto value = static_cast<float> (round % 11) / 10.0f;

        for (auto* parameter : processor.getParameters())
            parameter->setValueNotifyingHost (value);

        juce::MemoryBlock state;
        processor.getStateInformation (state);
        processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));

        processor.uiHeight = 300 + round;
        processor.bendSteps = round % 2 * 12.0;
        processor.midiTransposeMode = round % 3 == 0;
        processor.lastNoteOffset = value;
        processor.outputGain = 0.0f;
        setGravity (processor.mainWheel, value);

        processor.voices.keysChanged = false;
        EXPECT_LE (processor.voices.keyLit[60 - lowestKeyNote], 1);
        EXPECT_TRUE (std::isfinite (processor.mainWheel.point + processor.timbWheel.point));
    }

    stop = true;
    audio.join();
    EXPECT_TRUE (finite);
}
} // namespace
} // namespace tarvelline::test
