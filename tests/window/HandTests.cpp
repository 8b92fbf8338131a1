// SPDX-License-Identifier: GPL-3.0-or-later
// What the controls do under the hand: mouse, mouse wheel and keyboard, as they come from the display's server.
#include "processor/Parameters.h"
#include "tests/window/HostWindow.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using juce::Point;
using Settings = HostWindow::Settings;

// In a window of 512 x 288
constexpr unsigned up = 4, down = 5; // notches
const Point<int> pitchWheel { 128, 60 }, timbreWheel { 384, 60 };
const struct
{
    Point<int> place;
    const char* id;
} knobs[] { { { 62, 230 }, mainGravityPar },  { { 128, 230 }, mainInertiaPar }, { { 194, 230 }, mainSmoothPar },
            { { 318, 230 }, timbGravityPar }, { { 384, 230 }, timbInertiaPar }, { { 450, 230 }, timbSmoothPar },
            { { 235, 263 }, mixerPar } };
const Point<int> boxes[] { { 30, 23 }, { 286, 23 } };
const Point<int> buttons[] { { 226, 23 }, { 482, 23 }, { 22, 270 } }; // all but the size button
const Point<int> keyboardStrip { 100, 272 }, panel { 128, 205 };
const juce::Rectangle<int> rings[] { { 12, 11, 37, 25 },   { 208, 11, 37, 25 },  { 268, 11, 37, 25 },
                                     { 464, 11, 37, 25 },  { 46, 33, 165, 165 }, { 302, 33, 165, 165 },
                                     { 236, 165, 19, 48 }, { 42, 211, 38, 38 } };

struct Wheel
{
    Point<int> place;
    const char *value, *range, *snap;
};

const Wheel wheels[] { { pitchWheel, mainWheelPar, mainRange, mainSnap },
                       { timbreWheel, timbWheelPar, timbRange, timbSnap } };

/** The window in full size, with both wheels in one of the six ranges. */
Settings inRange (size_t index)
{
    const auto range = static_cast<float> (index) / 5.0f;
    return { { toggleSize, 1.0f }, { mainRange, range }, { timbRange, range } };
}

/** The places of a wheel's grid, as the parameter holds them. */
std::vector<float> linesOf (size_t index)
{
    const auto steps = static_cast<int> (wheelRangeTable[index]);
    std::vector<float> lines;

    for (auto line = -steps / 2; line <= steps / 2; ++line)
        lines.push_back (static_cast<float> (0.5 + static_cast<double> (line) / steps));

    return lines;
}

/** What a host hears of a parameter's edits. */
struct Edits : juce::AudioProcessorParameter::Listener
{
    explicit Edits (juce::AudioProcessorParameter& p) : parameter (p) { parameter.addListener (this); }
    ~Edits() override { parameter.removeListener (this); }
    void parameterValueChanged (int, float) override { heard += "set "; }
    void parameterGestureChanged (int, bool begins) override { heard += begins ? "begin " : "end "; }
    juce::AudioProcessorParameter& parameter;
    std::string heard;
};

/** Gives the window the keyboard, as a host does that hands its keys on. */
void handKeysOn (HostWindow& host)
{
    HostWindow::screen->focusWindowAt (HostWindow::x + panel.x, HostWindow::y + panel.y);
    host.run (50);
}

void tab (HostWindow& host, int times)
{
    for (auto i = 0; i < times; ++i)
        host.type ("Tab");
}

/** One notch and one arrow key after the other, up and down, at the control that has the keyboard. */
void expectSteps (HostWindow& host, const char* id, Point<int> place, float start, double step)
{
    auto& parameter = host.parameter (id);
    Edits edits (parameter);
    parameter.setValue (start);
    host.run (10);

    const auto expect = [&] (const char* act, double value)
    {
        EXPECT_NEAR (parameter.getValue(), value, 1.0e-6) << id << ": " << act << ", step " << step;
        EXPECT_EQ (std::exchange (edits.heard, ""), "begin set end ") << id << ": " << act;
    };

    for (const auto& [direction, keys] :
         { std::pair { up, std::array { "Up", "Right" } }, std::pair { down, std::array { "Down", "Left" } } })
    {
        const auto sign = direction == up ? 1.0 : -1.0;
        host.click (place, direction);
        expect ("notch", start + sign * step);

        for (const auto* key : keys)
        {
            parameter.setValue (start);
            host.run (10);
            host.type (key);
            expect (key, start + sign * step);
        }

        parameter.setValue (start);
        host.run (10);
    }
}

// A line that the float holds just inside itself, which a click takes for the place before.
TEST (Click, MovesNoWheelFromWhereItStands)
{
    auto places = 0, moved = 0;

    for (size_t index = 0; index < wheelRangeTable.size(); ++index)
    {
        HostWindow host (inRange (index));
        host.open();
        auto values = linesOf (index);
        values.push_back (0.61803f); // between two lines

        for (const auto value : values)
            for (const auto& wheel : wheels) // in turn: two clicks on one are a double click
            {
                host.parameter (wheel.value).setValue (value);
                host.run (10);
                host.click (wheel.place);
                ++places;
                moved += std::abs (host.parameter (wheel.value).getValue() - value) > 0.0f;
            }
    }

    EXPECT_EQ (moved, 0) << "of " << places << " places";
}

// A notch that the lean to the centre swallows, one that skips a line, or one that runs over an end.
TEST (Notch, IsOneStepOfTheGridBothWaysUpToTheEnds)
{
    auto notches = 0, wrong = 0;

    for (size_t index = 0; index < wheelRangeTable.size(); ++index)
    {
        HostWindow host (inRange (index));
        host.open();
        const auto lines = linesOf (index);

        for (const auto& wheel : wheels)
        {
            const auto turn = [&] (unsigned direction, float expected)
            {
                host.click (wheel.place, direction);
                ++notches;
                wrong += std::abs (host.parameter (wheel.value).getValue() - expected) > 1.0e-7f;
            };

            host.parameter (wheel.value).setValue (0.0f);
            host.run (10);
            turn (down, 0.0f);

            for (size_t line = 1; line < lines.size(); ++line)
                turn (up, lines[line]);

            turn (up, 1.0f);

            for (size_t line = lines.size() - 1; line > 0; --line)
                turn (down, lines[line - 1]);

            for (const auto direction : { up, down }) // from between two lines, below the centre and above it
                for (const auto line : { size_t { 0 }, lines.size() - 2 })
                {
                    host.parameter (wheel.value).setValue (0.6f * lines[line] + 0.4f * lines[line + 1]);
                    host.run (10);
                    turn (direction, lines[direction == up ? line + 1 : line]);
                }
        }
    }

    EXPECT_EQ (wrong, 0) << "of " << notches << " notches";
}

// Steps by parts of the travel, which are half a semitone in the widest range; keys that step otherwise than notches; many
// edits, or none, for a host that joins them into one to be undone.
TEST (Steps, AreTenCentsOffTheGridAndOneWithShiftByNotchesAndKeysAlike)
{
    for (const auto snap : { true, false })
    {
        auto settings = inRange (5);
        settings[mainSnap] = settings[timbSnap] = snap ? 1.0f : 0.0f;
        HostWindow host (settings);
        host.open();
        handKeysOn (host);
        tab (host, 4); // past what lies above the wheels

        for (const auto& wheel : wheels)
        {
            tab (host, 1);
            expectSteps (host, wheel.value, wheel.place, 0.625f, snap ? 1.0 / 48.0 : 0.1 / 48.0);
            host.hold ("Shift_L", true);
            expectSteps (host, wheel.value, wheel.place, 0.625f, snap ? 0.1 / 48.0 : 0.01 / 48.0);
            host.hold ("Shift_L", false);
        }
    }
}

TEST (Steps, OfAKnobAreAHundredthAndWithShiftATenthOfThat)
{
    HostWindow host (inRange (3));
    host.open();
    handKeysOn (host);
    tab (host, 7);

    for (const auto& [place, id] : knobs)
    {
        tab (host, 1);
        expectSteps (host, id, place, 0.3f, 0.01);
        host.hold ("Shift_L", true);
        expectSteps (host, id, place, 0.3f, 0.001);
        host.hold ("Shift_L", false);
    }
}

// A DAW whose space bar is dead after a click into the window; a menu that such a window cannot open, or not close.
TEST (Focus, StaysWithTheHostWhateverIsClicked)
{
    auto& screen = *HostWindow::screen;
    HostWindow host (inRange (3));
    host.open();
    juce::Component other; // where the host's user has been typing
    other.setBounds (700, 400, 200, 200);
    other.addToDesktop (0);
    other.setVisible (true);
    host.run (50);
    screen.focusTopmostWindow();
    const auto owner = screen.keyboardOwner(), windows = screen.openWindows().size();
    std::vector<Point<int>> places { pitchWheel, timbreWheel, keyboardStrip, panel };

    for (const auto& knob : knobs)
        places.push_back (knob.place);

    places.insert (places.end(), std::begin (buttons), std::end (buttons));

    for (const auto& place : places)
    {
        host.click (place);
        EXPECT_EQ (screen.keyboardOwner(), owner) << place.toString();
    }

    for (const auto& place : boxes)
    {
        host.click (place);
        host.run (300);
        EXPECT_EQ (screen.openWindows().size(), windows + 1) << "the menu opens";
        host.drag ({ 700, 400 }, { 700, 400 });
        host.run (200);
        EXPECT_EQ (screen.openWindows().size(), windows) << "and closes";
        EXPECT_EQ (screen.keyboardOwner(), owner) << place.toString();
    }
}

// A control that has the keyboard and does not show it, or a ring that stays behind.
TEST (Focus, ShowsARingAroundEachControlInTurnUntilItLeaves)
{
    HostWindow host (inRange (3));
    host.open();
    handKeysOn (host);
    host.moveMouseAway();
    host.run (50);
    const auto plain = host.picture();

    for (const auto& ring : rings)
    {
        tab (host, 1);
        host.run (60);
        const auto picture = host.picture();
        juce::Rectangle<int> changed;

        for (auto y = 0; y < picture.getHeight(); ++y)
            for (auto x = 0; x < picture.getWidth(); ++x)
                if (picture.getPixelAt (x, y) != plain.getPixelAt (x, y))
                    changed = changed.getUnion ({ x, y, 1, 1 });

        EXPECT_EQ (changed, ring.expanded (2)) << ring.toString();
        const auto top = picture.getPixelAt (ring.getCentreX(), ring.getY());
        EXPECT_TRUE (isOrange (top)) << top.toString();
        EXPECT_GE (contrastRatio (top, picture.getPixelAt (ring.getCentreX(), ring.getY() - 2)), 3.0);
    }

    HostWindow::screen->focusTopmostWindow();
    host.run (100);
    EXPECT_EQ (differingPixels (plain, host.picture(), 0), 0);
}
} // namespace
} // namespace tarvelline::test
