// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/MessagePump.h"
#include "tests/support/Meters.h"

#include <atomic>
#include <thread>

namespace tarvelline::test
{
namespace
{
// A word that both threads touch without being atomic (the thread sanitizer reports it), or a setting changed in the middle
// of a block that drives the sound to infinity.
TEST (Threads, ShareTheProcessorWhileItPlays)
{
    EditorRig rig;
    auto& processor = rig.processor;
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

        for (const auto& bound : boundSliders)
            rig.turn (bound.control, 1.0 - value);

        for (const auto& bound : boundButtons)
            rig.toggle (bound.control, round % 2 == 0);

        rig.choose ("pitchRangeBox", round % 6);
        dispatchNextMessageOnSystemQueue (true); // the window's timers
        rig.editor->createComponentSnapshot (rig.editor->getLocalBounds());

        if (round % 5 == 0)
        {
            rig.editor.reset();
            rig.open();
        }

        EXPECT_TRUE (std::isfinite (processor.mainWheel.point + processor.timbWheel.point));
    }

    stop = true;
    audio.join();
    EXPECT_TRUE (finite);
}
} // namespace
} // namespace tarvelline::test
