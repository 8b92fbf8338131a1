// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/TarvellineAudioProcessor.h"
#include "tests/window/HostWindow.h"

#include <atomic>
#include <cmath>
#include <map>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using Settings = std::map<const char*, float>; // parameters, normalised

constexpr auto pi = juce::MathConstants<float>::pi;

/** Puts the module to rest with the settings, as a host does that restores a session. */
void apply (HostWindow& host, const Settings& settings)
{
    for (const auto& [id, value] : settings)
        host.parameter (id).setValue (value);

    host.playBlock(); // hands them over
    host.module->releaseResources();
    host.module->prepareToPlay (44100.0, HostWindow::blockSize);
    host.run (100);
}

/** The same window made in this process, where nothing comes late. */
juce::Image expectedPicture (HostWindow& host, const Settings& settings)
{
    TarvellineAudioProcessor processor;

    for (const auto& [id, value] : settings)
        processor.parameters.getParameter (id)->setValueNotifyingHost (value);

    processor.prepareToPlay (44100.0, HostWindow::blockSize);
    const std::unique_ptr<juce::AudioProcessorEditor> editor (processor.createEditor());
    editor->setVisible (true);
    host.run (100); // for the dials, which poll
    return pictureOf (*editor);
}

struct OpeningCase
{
    const char* name;
    Settings settings;
    int width;
};

void PrintTo (const OpeningCase& opening, std::ostream* out) { *out << opening.name; }

class OpeningInAHost : public testing::TestWithParam<OpeningCase>
{
};

// Where the host's thread is not the framework's message thread, attachments update late: a window of the wrong width,
// read-outs that flash, and modes that the window's first moments write over.
TEST_P (OpeningInAHost, ShowsTheParametersAtOnce)
{
    HostWindow host;
    apply (host, GetParam().settings);
    host.open();
    EXPECT_EQ (host.editor->getWidth(), GetParam().width);
    EXPECT_EQ (host.editor->getHeight(), 288);

    host.run (250);
    const auto picture = host.picture();
    const auto expected = expectedPicture (host, GetParam().settings);
    writePicture (picture, juce::String ("window-") + GetParam().name + ".png");
    ASSERT_EQ (picture.getBounds(), expected.getBounds());
    EXPECT_EQ (differingPixels (picture, expected, 2), 0);

    for (const auto& [id, value] : GetParam().settings)
        EXPECT_NEAR (host.parameter (id).getValue(), value, 1.0e-6f) << id;
}

INSTANTIATE_TEST_SUITE_P (Modes, OpeningInAHost,
                          testing::Values (OpeningCase { "fresh", {}, 256 },
                                           OpeningCase { "half",
                                                         { { mainSnap, 0.0f },
                                                           { midiOptions, 0.0f },
                                                           { mainRange, 1.0f },
                                                           { mainWheelPar, 0.3f },
                                                           { mixerPar, 0.4f } },
                                                         256 },
                                           OpeningCase { "full",
                                                         { { toggleSize, 1.0f },
                                                           { timbSnap, 0.0f },
                                                           { timbRange, 0.4f },
                                                           { timbWheelPar, 0.8f },
                                                           { mainSmoothPar, 0.7f } },
                                                         512 }),
                          [] (const auto& opening) { return opening.param.name; });

/** The pitch wheel as it is on the screen of a window of 288 pixels' height. */
struct WheelOnScreen
{
    explicit WheelOnScreen (HostWindow& host)
    {
        auto picture = host.picture();
        const juce::Rectangle<int> wheel (46, 33, 165, 165);
        const juce::Point<float> centre (128.5f, 115.5f);
        const auto at = [=] (float from, float to)
        {
            return [=] (juce::Point<float> p)
            {
                const auto radius = polarFrom (centre, p).radius;
                return radius >= from && radius < to;
            };
        };
        const auto angleOf = [&] (const auto& where)
        {
            auto masked = picture.createCopy();

            for (auto y = 0; y < masked.getHeight(); ++y)
                for (auto x = 0; x < masked.getWidth(); ++x)
                    if (! where (juce::Point<int> (x, y).toFloat()))
                        masked.setPixelAt (x, y, juce::Colours::black);

            return polarFrom (centre, centreOf (masked, wheel, isOrange)).angle;
        };

        puck = angleOf (at (60.0f, 83.0f)); // its bar
        mark = angleOf (at (38.0f, 56.0f)); // the follow dial's
    }

    float puck, mark;
};

// The host's automation that reaches the sound but not the screen, or the dial showing the wheel instead of the sound.
TEST (Automation, MovesThePuckAtOnceAndTheDialWithTheSound)
{
    HostWindow host;
    apply (host, { { mainGravityPar, 1.0f }, { mainInertiaPar, 0.0f } });
    host.open();
    host.run (200);
    EXPECT_NEAR (WheelOnScreen (host).puck, 0.0f, 0.03f);
    EXPECT_NEAR (WheelOnScreen (host).mark, 0.0f, 0.03f);

    host.audioRuns = false;
    host.parameter (mainWheelPar).setValue (0.75f);
    host.run (200);
    EXPECT_NEAR (WheelOnScreen (host).puck, 0.4f * pi, 0.06f);
    EXPECT_NEAR (WheelOnScreen (host).mark, 0.0f, 0.03f) << "no audio, no motion";

    host.audioRuns = true;
    host.run (1500);
    EXPECT_NEAR (WheelOnScreen (host).mark, 0.4f * pi, 0.05f);
}

struct DragCase
{
    bool shift;
    int pixels; // upward; 250 are the whole range
    float value, tolerance;
};

class Drag : public testing::TestWithParam<DragCase>
{
};

TEST_P (Drag, OfTheWheelReachesTheHost)
{
    const auto [shift, pixels, value, tolerance] = GetParam();
    HostWindow host;
    host.open();
    host.run (150);
    HostWindow::screen->pressShift (shift);
    host.drag ({ 128, 115 }, { 128, 115 - pixels });
    HostWindow::screen->pressShift (false);
    host.run (100);

    EXPECT_NEAR (host.parameter (mainWheelPar).getValue(), value, tolerance);
    EXPECT_NEAR (WheelOnScreen (host).puck, (host.parameter (mainWheelPar).getValue() - 0.5f) * 1.6f * pi, 0.06f);
}

INSTANTIATE_TEST_SUITE_P (Table, Drag,
                          testing::Values (DragCase { false, 52, 0.5f + 2.0f / 12.0f, 1.0e-6f },
                                           DragCase { false, -80, 0.5f - 3.0f / 12.0f, 1.0e-6f },
                                           DragCase { true, 52, 0.5f + 52.0f / 250.0f, 0.006f }));

TEST (RangeMenu, ChoosesTheSpan)
{
    HostWindow host;
    host.open();
    host.run (150);
    HostWindow::screen->focusTopmostWindow();
    const auto before = HostWindow::screen->openWindows().size();
    host.click ({ 30, 23 });
    host.run (300);
    const auto windows = HostWindow::screen->openWindows();
    ASSERT_EQ (windows.size(), before + 1) << "the menu opens in a window of its own";
    const auto menu = windows.back();
    host.run (150);
    const juce::Point<int> item (menu.x + menu.width / 2, menu.y + menu.height * 9 / 12); // the fifth of six
    host.moveMouse (item - juce::Point<int> (HostWindow::x, HostWindow::y));
    host.run (100);
    host.click (item - juce::Point<int> (HostWindow::x, HostWindow::y));
    host.run (200);

    EXPECT_EQ (HostWindow::screen->openWindows().size(), before);
    EXPECT_FLOAT_EQ (host.parameter (mainRange).getValue(), 0.8f);
    HostWindow::screen->moveMouse (1270, 790);
    host.run (150);
    EXPECT_EQ (differingPixels (host.picture(), expectedPicture (host, { { mainRange, 0.8f } }), 2), 0);
}

TEST (Chord, LightsItsKeys)
{
    HostWindow host;
    apply (host, { { midiOptions, 0.0f } });
    host.open();
    host.run (150);

    for (const auto note : { 36, 64, 83 })
        host.midi.addEvent (juce::MidiMessage::noteOn (1, note, juce::uint8 { 100 }), 0);

    host.run (200);
    const auto picture = host.picture();
    const auto isLit = [&] (int whiteKey)
    {
        const auto keyX = 44.5f + 167.75f / 28.0f * (static_cast<float> (whiteKey) + 0.4f);
        return isOrange (picture.getPixelAt (static_cast<int> (keyX), 263 + 15));
    };

    for (auto key = 0; key < 28; ++key)
        EXPECT_EQ (isLit (key), key == 0 || key == 16 || key == 27) << key;

    for (const auto note : { 36, 64, 83 })
        host.midi.addEvent (juce::MidiMessage::noteOff (1, note), 0);

    host.run (600);
    EXPECT_EQ (differingPixels (host.picture(), expectedPicture (host, { { midiOptions, 0.0f } }), 2), 0);
}

TEST (SizeButton, WidensTheWindow)
{
    HostWindow host;
    host.open();
    host.run (150);
    host.click ({ 246, 190 });
    host.run (200);
    EXPECT_EQ (host.editor->getWidth(), 512);
    EXPECT_EQ (host.editor->getHeight(), 288);
    EXPECT_EQ (host.parameter (toggleSize).getValue(), 1.0f);
    HostWindow::screen->moveMouse (1270, 790);
    host.run (150);
    EXPECT_EQ (differingPixels (host.picture(), expectedPicture (host, { { toggleSize, 1.0f } }), 2), 0);
}

TEST (Resizing, ByTheCornerIsRememberedWhenReopened)
{
    HostWindow host;
    host.open();
    host.run (150);
    host.drag ({ 252, 284 }, { 350, 394 });
    host.run (200);
    const auto width = host.editor->getWidth(), height = host.editor->getHeight();
    EXPECT_NEAR (height, 398, 6);
    EXPECT_NEAR (width, static_cast<float> (height) * 0.88889f, 1.0f);

    host.close();
    host.run (50);
    host.open();
    EXPECT_EQ (host.editor->getHeight(), height);
    EXPECT_EQ (host.editor->getWidth(), static_cast<int> (static_cast<float> (height) * 0.88889f));
}

// A timer, listener or look that outlives its window, met by the audio thread or the next window.
TEST (Reopening, TwoHundredTimesWhileAudioRuns)
{
    HostWindow host;
    host.audioRuns = false;
    std::atomic<bool> ended { false };
    std::atomic<int> blocks { 0 };
    std::thread audio (
        [&]
        {
            while (! ended)
            {
                const auto isOn = blocks % 20 < 10;
                host.midi.addEvent (isOn ? juce::MidiMessage::noteOn (1, 60, 0.5f) : juce::MidiMessage::noteOff (1, 60),
                                    0);
                host.playBlock();
                ++blocks;
                std::this_thread::sleep_for (std::chrono::milliseconds (2));
            }
        });

    for (auto cycle = 0; cycle < 200; ++cycle)
    {
        host.open();
        host.parameter (mainWheelPar).setValue (static_cast<float> (cycle) / 200.0f);
        host.parameter (toggleSize).setValue (static_cast<float> (cycle % 2));
        host.run (cycle % 7 == 0 ? 70 : 10); // closed before its first paint, and after some ticks of its timers
        host.close();
    }

    ended = true;
    audio.join();
    EXPECT_GT (blocks.load(), 200);
    EXPECT_TRUE (VirtualScreen::errors().empty());

    const Settings rest { { toggleSize, 0.0f }, { mainWheelPar, 0.5f } };
    apply (host, rest);
    host.open();
    host.run (200);
    EXPECT_EQ (differingPixels (host.picture(), expectedPicture (host, rest), 2), 0);
}
} // namespace
} // namespace tarvelline::test
