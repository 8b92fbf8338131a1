// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"
#include "tests/support/RealTimeWatch.h"

#include <gtest/gtest.h>

#include <mutex>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

class RealTime : public testing::Test
{
protected:
    void SetUp() override
    {
        if (! TARVELLINE_REAL_TIME_WATCH)
            GTEST_SKIP() << "a sanitizer's own allocator and locks stand in the place of the watch";
    }

    /** Expects a call to be fit for an audio thread. */
    template <typename Call>
    static void expectClean (Call&& call)
    {
        const auto report = watchRealTime (call);
        EXPECT_EQ (report.allocations, 0) << report.first;
        EXPECT_EQ (report.locks, 0) << report.first;
    }

    /** Plays blocks of every awkward length, with what `midi` holds in each, and bypassed too. */
    static void expectCleanBlocks (ProcessorRig& rig, const juce::MidiBuffer& midi)
    {
        for (const auto size : { 512, 1, 0, 64, 8192, 2048 })
        {
            SCOPED_TRACE (size);
            juce::AudioBuffer<float> block (rig.channels, size);
            const auto noise = whiteNoise (size);

            for (int c = 0; c < rig.channels; ++c)
                block.copyFrom (c, 0, noise.data(), size);

            auto events = midi;
            expectClean ([&] { rig.processor.processBlock (block, events); });
            events = midi;
            expectClean ([&] { rig.processor.processBlockBypassed (block, events); });
        }
    }
};

// A watch that is blind would pass every other test here.
TEST_F (RealTime, WatchSeesAllocationsAndLocks)
{
    std::mutex mutex;
    std::vector<int> numbers;
    void* volatile block = nullptr;

    EXPECT_EQ (watchRealTime ([&] { numbers.resize (1000); }).allocations, 1);
    EXPECT_EQ (watchRealTime ([&] { block = std::calloc (1, 8); }).allocations, 1);
    EXPECT_EQ (watchRealTime ([&] { block = std::realloc (block, 80000); }).allocations, 1);
    EXPECT_EQ (watchRealTime ([&] { std::free (block); }).allocations, 1);

    const auto locked = watchRealTime ([&] { const std::scoped_lock lock (mutex); });
    EXPECT_EQ (locked.locks, 1);
    EXPECT_EQ (locked.allocations, 0);
    EXPECT_FALSE (locked.first.empty());

    juce::CriticalSection section;
    EXPECT_EQ (watchRealTime ([&] { const juce::ScopedLock lock (section); }).locks, 1);
    EXPECT_EQ (watchRealTime ([] {}).allocations, 0);
}

// A vector that grows on the first note, a message that is copied to the heap, a parameter found through a locked map. Not
// watched: a range selector that a host moves, during which the framework holds its own listener lock.
TEST_F (RealTime, NoBlockAllocatesOrLocks)
{
    juce::MidiBuffer midi;

    for (int i = 0; i < 300; ++i) // a flood: notes of eight voices and more, releases, bends
    {
        midi.addEvent (juce::MidiMessage::noteOn (1, 40 + i % 12, 1.0f), i);
        midi.addEvent (juce::MidiMessage::pitchWheel (1, 50 * i), i);
        midi.addEvent (juce::MidiMessage::noteOff (1, 40 + i % 7), i + 1);
    }

    const std::vector<juce::uint8> longSysex (2000, 0x11);
    midi.addEvent (juce::MidiMessage::createSysExMessage (longSysex.data(), 2000), 0);

    for (const auto transpose : { 1.0f, 0.0f })
        for (const auto channels : { 1, 2 })
            for (const auto rate : { 44100.0, 192000.0 })
                for (const auto timbre : { 0.0f, 1.0f })
                {
                    SCOPED_TRACE (testing::Message() << transpose << ", " << channels << " channels, " << rate);
                    ProcessorRig rig (rate, channels);
                    rig.set (midiOptions, transpose);
                    expectCleanBlocks (rig, midi); // unprepared
                    rig.prepare();
                    rig.processor.bendSteps = 12.0;
                    rig.set (toggleSize, timbre);
                    expectCleanBlocks (rig, midi);
                    rig.set (toggleSize, 1.0f - timbre);
                    rig.set (timbWheelPar, 0.9f);
                    rig.set (mainWheelPar, 0.1f);
                    expectCleanBlocks (rig, {});
                }
}
} // namespace
} // namespace tarvelline::test
