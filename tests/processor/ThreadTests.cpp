// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

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
        setInertia (processor.timbWheel, value);
        setSmooth (processor.mainWheel, value);

        const auto& keys = processor.voices.keyLit;
        EXPECT_LE (std::count_if (keys.begin(), keys.end(), [] (auto& lit) { return lit != 0; }), keyCount);
        processor.voices.keysChanged = false;
        EXPECT_TRUE (std::isfinite (processor.mainWheel.point + processor.timbWheel.point));
    }

    stop = true;
    audio.join();
    EXPECT_TRUE (finite);
}
} // namespace
} // namespace tarvelline::test
