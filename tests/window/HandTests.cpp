// SPDX-License-Identifier: GPL-3.0-or-later
// What the controls do under a hand: mouse, mouse wheel and keys, as the display's server has them.
#include "tests/editor/EditorRig.h"
#include "tests/window/HostWindow.h"

#include <gtest/gtest.h>

#include <span>
#include <utility>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using Settings = HostWindow::Settings;

constexpr unsigned up = 4, down = 5; // notches

/** Both wheels in one of the six ranges. */
Settings inRange (size_t index, bool snap = true, bool full = true)
{
    const auto range = static_cast<float> (index) / 5.0f, on = snap ? 1.0f : 0.0f;
    return { { mainRange, range },
             { timbRange, range },
             { mainSnap, on },
             { timbSnap, on },
             { toggleSize, full ? 1.0f : 0.0f } };
}

/** A window under a hand, with another in this process that tells where its controls lie. */
struct Hand : HostWindow
{
    explicit Hand (const Settings& settings) : HostWindow (settings), map (0, settings.at (toggleSize) > 0.5f)
    {
        open();
    }

    juce::Point<int> placeOf (const char* control) { return map.control (control).getBounds().getCentre(); }

    void set (const Bound& bound, float value)
    {
        parameter (bound.parameter).setValue (value);
        run (5);
    }

    /** Gives the window the keyboard, as a host does that hands its keys on. */
    void takeKeys()
    {
        screen->focusWindowAt (x + 5, y + 5);
        moveMouseAway();
        run (50);
        plain = picture();
    }

    /** How many pixels differ from the window as it was when it got them. */
    int changedIn (juce::Rectangle<int> area)
    {
        return differingPixels (plain.getClippedImage (area), picture().getClippedImage (area), 2);
    }

    int changed() { return changedIn (plain.getBounds()); }

    EditorRig map;
    juce::Image plain;
};

const std::array wheels { boundSliders[0], boundSliders[4] };

/** The lines of a wheel's grid, as its parameter holds them. */
std::vector<float> linesOf (size_t index)
{
    const auto steps = static_cast<int> (wheelRangeTable[index]);
    std::vector<float> lines;

    for (auto line = -steps / 2; line <= steps / 2; ++line)
        lines.push_back (static_cast<float> (0.5 + static_cast<double> (line) / steps));

    return lines;
}

// A line that the float holds just inside itself, which a click takes for the one before; a hand that does not hold still.
TEST (Click, MovesNoWheelFromWhereItStands)
{
    auto places = 0, moved = 0;

    for (size_t index = 0; index < wheelRangeTable.size(); ++index)
    {
        Hand hand (inRange (index));
        auto values = linesOf (index);
        values.push_back (0.61803f); // between two lines

        for (const auto value : values)
            for (const auto& wheel : wheels) // in turn: two clicks on one are a double click
            {
                hand.set (wheel, value);
                hand.click (hand.placeOf (wheel.control), 1, { 0, 1 });
                ++places;
                moved += std::abs (hand.parameter (wheel.parameter).getValue() - value) > 0.0f;
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
        Hand hand (inRange (index));
        const auto lines = linesOf (index);
        const auto last = lines.size() - 1;

        for (const auto& wheel : wheels)
        {
            const auto turn = [&] (unsigned direction, float expected)
            {
                hand.click (hand.placeOf (wheel.control), direction);
                ++notches;
                wrong += std::abs (hand.parameter (wheel.parameter).getValue() - expected) > 1.0e-7f;
            };

            hand.set (wheel, 0.0f);

            for (size_t line = 0; line <= last; ++line)
                turn (up, lines[std::min (line + 1, last)]);

            for (auto line = last + 1; line > 0; --line)
                turn (down, lines[line < 2 ? 0 : line - 2]);

            for (const auto direction : { up, down }) // from between two lines, below the centre and above it
                for (const auto line : { size_t { 0 }, last - 1 })
                {
                    hand.set (wheel, 0.6f * lines[line] + 0.4f * lines[line + 1]);
                    turn (direction, lines[direction == up ? line + 1 : line]);
                }
        }
    }

    EXPECT_EQ (wrong, 0) << "of " << notches << " notches";
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

/** A notch and two arrow keys up and down, at the control that has the keyboard. */
void expectSteps (Hand& hand, const Bound& bound, double step)
{
    constexpr auto start = 0.625f; // a line at 48 steps
    Edits edits (hand.parameter (bound.parameter));

    const auto expect = [&] (double value, auto&& act)
    {
        hand.set (bound, start);
        act();
        EXPECT_NEAR (edits.parameter.getValue(), value, 1.0e-6) << bound.control << ", step " << step;
        EXPECT_EQ (std::exchange (edits.heard, ""), "begin set end ") << bound.control;
    };

    expect (start + step, [&] { hand.click (hand.placeOf (bound.control), up); });
    expect (start - step, [&] { hand.click (hand.placeOf (bound.control), down); });

    for (const auto* key : { "Up", "Right", "KP_Up" })
        expect (start + step, [&] { hand.type (key); });

    for (const auto* key : { "Down", "Left", "KP_Left" })
        expect (start - step, [&] { hand.type (key); });
}

// Steps by parts of the travel, which are half a semitone in the widest range; keys that step otherwise than notches; many
// edits, or none, for a host that joins them into one to be undone.
TEST (Steps, AreAlikeForNotchesAndKeysAndFinerWithShift)
{
    for (const auto snap : { true, false })
    {
        Hand hand (inRange (5, snap));
        hand.takeKeys();

        for (auto* stop : hand.map.editor->createKeyboardFocusTraverser()->getAllComponents (hand.map.editor.get()))
        {
            hand.type ("Tab");

            for (const auto& bound : boundSliders)
                if (stop->getComponentID() == bound.control)
                {
                    const auto wheel = dynamic_cast<SnapSlider*> (stop)->freeStep < 0.01;
                    expectSteps (hand, bound, ! wheel ? 0.01 : snap ? 1.0 / 48.0 : 0.1 / 48.0);
                    HostWindow::screen->pressKey ("Shift_L", true);
                    expectSteps (hand, bound, ! wheel ? 0.001 : snap ? 0.1 / 48.0 : 0.01 / 48.0);
                    HostWindow::screen->pressKey ("Shift_L", false);
                }
        }
    }
}

// A DAW whose space bar is dead after a click into the window; a menu that such a window cannot open, or not close.
TEST (Focus, StaysWithTheHostWhateverIsClicked)
{
    auto& screen = *HostWindow::screen;
    Hand hand (inRange (3));
    juce::Component other; // where the host's user has been typing
    other.setBounds (700, 400, 200, 200);
    other.addToDesktop (0);
    other.setVisible (true);
    hand.run (50);
    screen.focusTopmostWindow();
    const auto owner = screen.keyboardOwner(), windows = screen.openWindows().size();

    for (auto* child : hand.map.editor->getChildren())
        if (auto* box = dynamic_cast<juce::ComboBox*> (child); child != &hand.map.control ("sizeButton"))
        {
            hand.click (child->getBounds().getCentre());
            hand.run (box != nullptr ? 300 : 0);
            EXPECT_EQ (screen.openWindows().size(), windows + (box != nullptr ? 1 : 0)) << "the menu opens";

            if (box != nullptr)
                hand.drag ({ 700, 400 }, { 700, 400 });

            EXPECT_EQ (screen.openWindows().size(), windows) << "and closes";
            EXPECT_EQ (screen.keyboardOwner(), owner) << child->getTitle();
        }
}

// A control that the Tab key never reaches, or one that has the keyboard and does not show it; a display where Tab stops for
// nothing; in the half window, a walk off to controls that nobody sees; a ring that stays behind.
TEST (Focus, ShowsARingAroundEveryControlInTurnUntilItLeaves)
{
    for (const auto full : { true, false })
    {
        Hand hand (inRange (3, true, full));
        hand.takeKeys();
        std::vector<juce::Component*> stops;

        for (const auto& list : { std::span<const Bound> (boundSliders), std::span<const Bound> (boundButtons),
                                  std::span<const Bound> (boundBoxes) })
            for (const auto& bound : list)
                if (auto& control = hand.map.control (bound.control); control.getRight() <= hand.editor->getWidth())
                    stops.push_back (&control);

        const auto place = [] (auto* control) { return std::pair (control->getY(), control->getX()); };
        std::sort (stops.begin(), stops.end(), [&] (auto* a, auto* b) { return place (a) < place (b); });
        stops.push_back (stops.front()); // round again

        for (const auto* control : stops)
        {
            hand.type ("Tab");
            hand.run (60);
            const auto ring = control->getBounds();
            EXPECT_GT (hand.changedIn (ring.expanded (2)), ring.getWidth() + ring.getHeight()) << control->getTitle();
            EXPECT_EQ (hand.changedIn (ring.expanded (2)), hand.changed()) << control->getTitle();

            const auto picture = hand.picture();
            const auto accent = picture.getPixelAt (ring.getCentreX(), ring.getY());
            EXPECT_TRUE (isOrange (accent)) << control->getTitle();
            EXPECT_GE (contrastRatio (accent, picture.getPixelAt (ring.getCentreX(), ring.getY() - 2)), 3.0);
            EXPECT_GE (contrastRatio (accent, picture.getPixelAt (ring.getCentreX(), ring.getY() + 1)), 3.0);
        }

        HostWindow::screen->focusWindowAt (1, 1); // the desktop
        hand.run (100);
        EXPECT_EQ (hand.changed(), 0);
    }
}
} // namespace
} // namespace tarvelline::test
