// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/TarvellineAudioProcessor.h"
#include "tests/window/HostWindow.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using Settings = HostWindow::Settings;

constexpr auto pi = juce::MathConstants<float>::pi;

/** The number of pixels on the screen that do not become those of the same window made in this process, where nothing comes
    late. */
int wrongPixels (HostWindow& host, const Settings& settings)
{
    TarvellineAudioProcessor processor;

    for (const auto& [id, value] : settings)
        processor.parameters.getParameter (id)->setValueNotifyingHost (value);

    processor.prepareToPlay (HostWindow::rate, HostWindow::blockSize);
    const std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditor());
    editor->setVisible (true);
    host.moveMouseAway();
    auto wrong = 0;
    EXPECT_TRUE (host.runUntil ([&] { return host.editor->getLocalBounds() == editor->getLocalBounds(); }));
    host.runUntil ([&] { return (wrong = differingPixels (host.picture(), pictureOf (*editor), 2)) == 0; });
    return wrong;
}

// A module's first window is made on a thread that is not its framework's message thread, and attachments update late: a
// window of the wrong width, read-outs that flash, and modes that the window's first moments write over.
TEST (Opening, ShowsTheParametersAtOnce)
{
    const Settings half {
        { mainSnap, 0.0f }, { midiOptions, 0.0f }, { mainRange, 1.0f }, { mainWheelPar, 0.3f }, { mixerPar, 0.4f }
    };
    const Settings full {
        { toggleSize, 1.0f }, { timbSnap, 0.0f }, { timbRange, 0.4f }, { timbWheelPar, 0.8f }, { mainSmoothPar, 0.7f }
    };

    for (const auto& [settings, width] :
         { std::pair { Settings {}, 256 }, std::pair { half, 256 }, std::pair { full, 512 } })
    {
        HostWindow host (settings);
        host.open();
        EXPECT_EQ (host.openedSize, juce::Rectangle<int> (width, 288));
        EXPECT_EQ (wrongPixels (host, settings), 0);

        for (const auto& [id, value] : settings)
            EXPECT_NEAR (host.parameter (id).getValue(), value, 1.0e-6f) << id;
    }
}

/** Counts the sizes that the host is told from threads of the module's own. */
struct ForeignSizes : juce::ComponentListener
{
    void componentMovedOrResized (juce::Component&, bool, bool) override
    {
        count += std::this_thread::get_id() != thread ? 1 : 0;
    }

    const std::thread::id thread = std::this_thread::get_id();
    std::atomic<int> count { 0 };
};

// Between its making and its showing a window is in the hands of the module's own thread, on which no host expects to be
// asked for another size; or a size that is lost because it came then.
TEST (Opening, TakesASizeThatChangesMeanwhileOnTheHostsThread)
{
    ForeignSizes foreign;
    HostWindow host;
    host.makeEditor();
    host.editor->addComponentListener (&foreign);
    host.parameter (toggleSize).setValue (1.0f);
    host.playBlock();
    std::this_thread::sleep_for (std::chrono::milliseconds (100));
    host.showEditor();
    host.editor->removeComponentListener (&foreign);
    EXPECT_EQ (foreign.count, 0);
    EXPECT_EQ (wrongPixels (host, { { toggleSize, 1.0f } }), 0);
}

/** The angle of the one orange thing at a distance from the pitch wheel's centre, in a window of 288 pixels' height. */
float orangeAngleAt (HostWindow& host, float radius)
{
    const auto runs = litRuns (host.picture(), { 128.5f, 115.5f }, radius, isOrange);
    EXPECT_EQ (runs.size(), 1u);
    return runs.empty() ? 0.0f : runs[0] - 2.0f * pi;
}

const Settings fast { { mainGravityPar, 1.0f }, { mainInertiaPar, 0.0f } };

/** What puck and dial, which alone are painted as they move, leave behind: the wrong pixels once a fast wheel is at rest. */
int trails (HostWindow& host, float wheel)
{
    return wrongPixels (host, { { mainGravityPar, 1.0f }, { mainInertiaPar, 0.0f }, { mainWheelPar, wheel } });
}

// Automation that reaches the sound but not the screen, or a dial that shows the wheel instead of the sound.
TEST (Automation, MovesThePuckAtOnceAndTheDialWithTheSound)
{
    HostWindow host (fast);
    host.open();
    host.audioRuns = false;
    host.parameter (mainWheelPar).setValue (0.75f);
    host.run (200);
    EXPECT_NEAR (orangeAngleAt (host, 74.0f), 0.4f * pi, 0.05f) << "the puck's bar";
    EXPECT_NEAR (orangeAngleAt (host, 47.0f), 0.0f, 0.05f) << "the dial's mark: no audio, no motion";
    host.audioRuns = true;
    EXPECT_EQ (trails (host, 0.75f), 0);

    for (const auto bend : { 16383, 8192 }) // which moves the dial alone
    {
        host.midi.addEvent (juce::MidiMessage::pitchWheel (1, bend), 0);
        host.run (200);
    }

    EXPECT_EQ (trails (host, 0.75f), 0);
}

// A drag that moves the picture alone, or off the semitones; 250 pixels are the whole range.
TEST (Drag, ReachesTheHostSnappedUnlessShiftIsHeld)
{
    for (const auto& [pixels, shift, value, tolerance] : { std::tuple { 52, false, 0.5f + 2.0f / 12.0f, 1.0e-6f },
                                                           std::tuple { -80, false, 0.5f - 3.0f / 12.0f, 1.0e-6f },
                                                           std::tuple { 52, true, 0.5f + 52.0f / 250.0f, 0.006f } })
    {
        HostWindow host (fast);
        host.open();
        HostWindow::screen->pressKey ("Shift_L", shift);
        host.drag ({ 128, 115 }, { 128, 115 - pixels });
        HostWindow::screen->pressKey ("Shift_L", false);

        const auto moved = host.parameter (mainWheelPar).getValue();
        EXPECT_NEAR (moved, value, tolerance);
        EXPECT_EQ (trails (host, moved), 0);
    }
}

// A menu that does not open, or that closes when the mouse goes elsewhere; a tick or an entry that is another's, a scale that
// is not drawn anew.
TEST (RangeMenu, ChoosesTheSpan)
{
    HostWindow host ({ { toggleSize, 1.0f } });
    host.open();
    HostWindow::screen->focusTopmostWindow();
    const auto windows = HostWindow::screen->openWindows().size();
    host.click ({ 30, 23 });
    host.moveMouseAway();
    host.run (300); // a menu that has just opened does not hear clicks
    ASSERT_EQ (HostWindow::screen->openWindows().size(), windows + 1) << "the menu opens in a window of its own";

    const auto menu = HostWindow::screen->openWindows().back();
    const auto ticks = HostWindow::screen->capture (menu.withWidth (16));

    for (auto entry = 0; entry < 6; ++entry)
    {
        const auto row =
            ticks.getBounds().withHeight (menu.getHeight() / 6).translated (0, menu.getHeight() * entry / 6);
        EXPECT_EQ (
            boundsOf (ticks.getClippedImage (row), [] (auto colour) { return luminance (colour) > 0.6; }).isEmpty(),
            entry != 3)
            << entry;
    }

    host.click (
        { menu.getCentreX() - HostWindow::x, menu.getY() + menu.getHeight() * 9 / 12 - HostWindow::y }); // 5th of 6
    EXPECT_TRUE (host.runUntil ([&] { return HostWindow::screen->openWindows().size() == windows; }));
    EXPECT_FLOAT_EQ (host.parameter (mainRange).getValue(), 0.8f);
    EXPECT_EQ (wrongPixels (host, { { toggleSize, 1.0f }, { mainRange, 0.8f } }), 0);

    host.parameter (timbRange).setValue (0.0f);
    EXPECT_EQ (wrongPixels (host, { { toggleSize, 1.0f }, { mainRange, 0.8f }, { timbRange, 0.0f } }), 0);
}

// A key that is lit late, stays lit when its note ends, or when the host restarts the sound under it.
TEST (Chord, LightsItsKeysAsLongAsItIsHeld)
{
    const Settings multi { { midiOptions, 0.0f } };
    HostWindow host (multi);
    host.open();

    for (const auto note : { 36, 64, 83 })
        host.midi.addEvent (juce::MidiMessage::noteOn (1, note, juce::uint8 { 100 }), 0);

    for (const auto held : { true, false })
    {
        if (! held)
            host.midi.addEvent (juce::MidiMessage::noteOff (1, 64), 0);

        host.run (200);
        const auto picture = host.picture();

        for (auto key = 0; key < 28; ++key)
        {
            const auto keyX = 44.5f + 167.75f / 28.0f * (static_cast<float> (key) + 0.4f);
            EXPECT_EQ (isOrange (picture.getPixelAt (static_cast<int> (keyX), 278)),
                       key == 0 || (key == 16 && held) || key == 27);
        }
    }

    host.apply (multi);
    EXPECT_EQ (wrongPixels (host, multi), 0);
}

// A button or automation that changes the parameter but not the host's window, a corner that can be dragged beyond the limits,
// or a height that is lost with the window.
TEST (Resizing, ByButtonAndCornerIsRememberedWhenReopened)
{
    HostWindow host;
    host.open();
    host.click ({ 246, 190 });
    EXPECT_EQ (wrongPixels (host, { { toggleSize, 1.0f } }), 0);

    for (const auto& [to, height] :
         { std::pair { juce::Point (1200, 740), 576 }, { juce::Point (10, 10), 258 }, { juce::Point (704, 394), 398 } })
    {
        host.drag (host.editor->getLocalBounds().getBottomRight() - juce::Point (4, 4), to);
        EXPECT_NEAR (host.editor->getHeight(), height, height == 398 ? 6 : 0);
    }

    const auto width = host.editor->getWidth(), height = host.editor->getHeight();
    EXPECT_NEAR (width, static_cast<float> (height) * 1.77778f, 1.0f);

    host.close();
    host.open();
    EXPECT_EQ (host.openedSize.getHeight(), height);
    EXPECT_EQ (host.openedSize.getWidth(), static_cast<int> (static_cast<float> (height) * 1.77778f));

    host.parameter (toggleSize).setValue (0.0f);
    host.run (200);
    EXPECT_EQ (host.editor->getHeight(), height);
    EXPECT_EQ (host.editor->getWidth(), static_cast<int> (static_cast<float> (height) * 0.88889f));
}

// A timer, listener or look that outlives its window, met by the audio thread or the next window.
TEST (Reopening, TwoHundredTimesWhileAudioRuns)
{
    const Settings rest { { toggleSize, 0.0f }, { mainWheelPar, 0.5f } };
    HostWindow host;
    host.audioRuns = false; // on the message thread
    std::atomic<bool> ended { false };
    std::thread audio (
        [&]
        {
            for (auto block = 0; ! ended; ++block)
            {
                host.midi.addEvent (
                    block % 20 < 10 ? juce::MidiMessage::noteOn (1, 60, 0.5f) : juce::MidiMessage::noteOff (1, 60), 0);
                host.playBlock();
                std::this_thread::sleep_for (std::chrono::milliseconds (2));
            }
        });

    for (auto cycle = 0; cycle < 200; ++cycle)
    {
        host.parameter (mainWheelPar).setValue (static_cast<float> (cycle) / 200.0f);
        host.parameter (toggleSize).setValue (static_cast<float> (cycle % 2));
        host.open (cycle % 7 == 0 ? 70 : 10); // closed before its first paint, or after some ticks of its timers
        host.close();
    }

    ended = true;
    audio.join();
    host.audioRuns = true;
    host.apply (rest);
    host.open();
    EXPECT_EQ (wrongPixels (host, rest), 0);
}

#ifdef TARVELLINE_STANDALONE
// A program that takes a display which answers for one that does not, or whose window stays empty.
TEST (Standalone, OpensAWindowWithTheEditorInIt)
{
    const juce::TemporaryFile home;
    juce::ChildProcess program;
    ASSERT_TRUE (home.getFile().createDirectory().wasOk()
                 && program.start (
                     juce::StringArray ("env", "HOME=" + home.getFile().getFullPathName(), TARVELLINE_STANDALONE)));
    auto& screen = *HostWindow::screen;
    EXPECT_TRUE (pumpMessagesUntil (
        [&]
        {
            const auto windows = screen.openWindows();
            return ! windows.empty() && boundsOf (screen.capture (windows.back()), isOrange).getHeight() > 40;
        }));
    program.kill();
    EXPECT_TRUE (pumpMessagesUntil ([&] { return screen.openWindows().empty(); }));
    home.getFile().deleteRecursively();
}
#endif
} // namespace
} // namespace tarvelline::test
