// SPDX-License-Identifier: GPL-3.0-or-later
// What the controls do under a hand: mouse, mouse wheel and keys, as the display's server has them.
#include "tests/editor/EditorRig.h"
#include "tests/window/HostWindow.h"

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

constexpr unsigned up = 4, down = 5; // notches
const Bound wheels[] { boundSliders[0], boundSliders[4] };

/** A window with both wheels in one of the six ranges, and another in this process that tells where its controls lie. */
struct Hand : HostWindow
{
    explicit Hand (size_t range, float snap = 1.0f, float full = 1.0f)
        : HostWindow ({ { mainRange, static_cast<float> (range) / 5.0f },
                        { timbRange, static_cast<float> (range) / 5.0f },
                        { mainSnap, snap },
                        { timbSnap, snap },
                        { toggleSize, full } }),
          map (0, full > 0.5f)
    {
        open();
    }

    void set (const Bound& bound, float value)
    {
        parameter (bound.parameter).setValue (value);
        run (5);
    }

    float get (const Bound& bound) { return parameter (bound.parameter).getValue(); }

    void clickOn (const Bound& bound, unsigned button = 1, juce::Point<int> slip = {})
    {
        click (map.control (bound.control).getBounds().getCentre(), button, slip);
    }

    /** Gives the window the keyboard, as a host does that hands its keys on.
        @returns what Tab then reaches, one after the other */
    std::vector<juce::Component*> takeKeys()
    {
        screen->focusWindowAt (x + 5, y + 5);
        moveMouseAway();
        run (50);
        return map.editor->createKeyboardFocusTraverser()->getAllComponents (map.editor.get());
    }

    EditorRig map;
};

// A notch that the lean to the centre swallows, one that skips a line, or one that runs over an end; a line that the float holds
// just inside itself, which a click takes for the one before; a hand that does not hold still.
TEST (Wheel, StepsByNotchesFromLineToLineAndStaysWhereItIsClicked)
{
    for (size_t range = 0; range < wheelRangeTable.size(); ++range)
    {
        Hand hand (range);
        const auto lines = static_cast<int> (wheelRangeTable[range]);
        const auto valueAt = [&] (double line) { return static_cast<float> (juce::jlimit (0.0, 1.0, line / lines)); };

        const auto turn = [&] (const Bound& wheel, unsigned direction, float expected)
        {
            hand.clickOn (wheel, direction);
            EXPECT_TRUE (hand.runUntil ([&] { return std::abs (hand.get (wheel) - expected) <= 1.0e-7f; }))
                << hand.get (wheel) << " for " << expected;
        };

        const auto click = [&] (const Bound& wheel, float value)
        {
            hand.set (wheel, value);
            hand.clickOn (wheel, 1, { 0, 1 });
            EXPECT_EQ (hand.get (wheel), value);
        };

        for (auto line = 0; line <= lines; ++line)
            for (const auto& wheel : wheels) // in turn: two clicks on one are a double click
            {
                click (wheel, valueAt (line));
                turn (wheel, up, valueAt (line + 1));
            }

        for (auto line = lines; line >= 0; --line)
            for (const auto& wheel : wheels)
                turn (wheel, down, valueAt (line - 1));

        for (const auto between : { 0.4, lines - 0.6 }) // below the centre and above it
            for (const auto direction : { up, down })
                for (const auto& wheel : wheels)
                {
                    click (wheel, valueAt (between));
                    turn (wheel, direction, valueAt (direction == up ? std::ceil (between) : std::floor (between)));
                }
    }
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

/** A notch and arrow keys up and down, at the control that has the keyboard. */
void expectSteps (Hand& hand, const Bound& bound, double step)
{
    Edits edits (hand.parameter (bound.parameter));

    for (const std::string act : { "up", "down", "Up", "Right", "KP_Up", "Down", "Left", "KP_Left" })
    {
        constexpr auto start = 0.625f; // a line at 48 steps
        hand.set (bound, start);

        if (act == "up" || act == "down")
            hand.clickOn (bound, act == "up" ? up : down);
        else
            hand.type (act.c_str());

        EXPECT_TRUE (hand.runUntil ([&] { return edits.heard == "begin set end "; }))
            << bound.control << " " << act << ": " << edits.heard;
        edits.heard.clear();
        const auto sign = act == "up" || act == "Up" || act == "KP_Up" || act == "Right" ? 1.0 : -1.0;
        EXPECT_NEAR (hand.get (bound), start + sign * step, 1.0e-6) << bound.control << " " << act << ", step " << step;
    }
}

// Steps by parts of the travel, which are half a semitone in the widest range; keys that step otherwise than notches; many
// edits, or none, for a host that joins them into one to be undone.
TEST (Steps, AreAlikeForNotchesAndKeysAndFinerWithShift)
{
    for (const auto snap : { true, false })
    {
        Hand hand (5, snap ? 1.0f : 0.0f);

        for (auto* stop : hand.takeKeys())
        {
            hand.type ("Tab");

            for (const auto& bound : boundSliders)
                if (stop->getComponentID() == bound.control)
                {
                    const auto isWheel = stop->getComponentID().contains ("Wheel");
                    expectSteps (hand, bound, ! isWheel ? 0.01 : (snap ? 1.0 : 0.1) / 48.0);
                    HostWindow::screen->pressKey ("Shift_L", true);
                    expectSteps (hand, bound, ! isWheel ? 0.001 : (snap ? 0.1 : 0.01) / 48.0);
                    HostWindow::screen->pressKey ("Shift_L", false);
                }
        }
    }
}

// A DAW whose space bar is dead after a click into the window; a menu that such a window cannot open, or not close.
TEST (Focus, StaysWithTheHostWhateverIsClicked)
{
    auto& screen = *HostWindow::screen;
    Hand hand (3);
    juce::Component other; // where the host's user has been typing
    other.setBounds (700, 400, 200, 200);
    other.addToDesktop (0);
    other.setVisible (true);
    hand.run (50);
    screen.focusTopmostWindow();
    const auto windows = screen.openWindows().size();

    for (const auto handedOn : { false, true })
    {
        if (handedOn) // then the window keeps it, and no control takes it
            hand.takeKeys();

        const auto owner = screen.keyboardOwner();

        auto clicked = hand.map.editor->getChildren();
        clicked.add (hand.map.editor.get()); // whose middle is bare panel

        for (auto* child : clicked)
            if (child != &hand.map.control ("sizeButton"))
            {
                const auto isBox = dynamic_cast<juce::ComboBox*> (child) != nullptr;
                const auto isOpen = [&] (size_t menus) { return screen.openWindows().size() == windows + menus; };
                hand.click (child->getBounds().getCentre());
                EXPECT_TRUE (hand.runUntil ([&] { return isOpen (isBox ? 1 : 0); })) << "the menu opens";
                hand.run (isBox ? 300 : 0); // a menu takes no click before

                if (isBox && handedOn)
                    hand.type ("Escape");
                else if (child == &hand.map.control ("pitchRangeBox"))
                    hand.drag ({ 700, 400 }, { 700, 400 });
                else if (isBox) // a choice, which the box must not answer with taking the keyboard
                    hand.click (screen.openWindows().back().getCentre() - juce::Point (HostWindow::x, HostWindow::y));

                hand.run (60);
                EXPECT_TRUE (hand.runUntil ([&] { return isOpen (0); })) << "and closes";
                EXPECT_EQ (screen.keyboardOwner(), owner) << child->getTitle();
                EXPECT_FALSE (isOrange (hand.picture().getPixelAt (child->getBounds().getCentreX(), child->getY())));
            }
    }
}

// A control that the Tab key never reaches, or that has the keyboard and does not show it; a display where Tab stops for nothing;
// in the half window, a walk off to controls that nobody sees; a ring that stays behind, or is lost on its ground.
TEST (Focus, ShowsARingAroundEveryControlInTurnUntilItLeaves)
{
    for (const auto& [full, count] : { std::pair { 1.0f, 15u }, std::pair { 0.0f, 9u } })
    {
        Hand hand (3, 1.0f, full);
        auto stops = hand.takeKeys();
        ASSERT_EQ (stops.size(), count);
        stops.push_back (stops.front()); // round again
        const auto plain = hand.picture();
        auto height = 0;

        const auto changedIn = [&] (juce::Rectangle<int> area)
        { return differingPixels (plain.getClippedImage (area), hand.picture().getClippedImage (area), 2); };

        for (const auto* control : stops)
        {
            hand.type ("Tab");
            const auto ring = control->getBounds();
            const auto isRinged = [&]
            {
                const auto changed = changedIn (ring.expanded (2));
                return changed > ring.getWidth() + ring.getHeight() && changed == changedIn (plain.getBounds());
            };
            EXPECT_TRUE (hand.runUntil (isRinged)) << control->getTitle();
            EXPECT_TRUE (ring.getY() >= height || control == stops.front()) << control->getTitle();
            height = ring.getY();

            const auto accent = hand.picture().getPixelAt (ring.getCentreX(), ring.getY());
            EXPECT_TRUE (isOrange (accent)) << control->getTitle();

            for (const auto beside : { -2, 1 })
                EXPECT_GE (contrastRatio (accent, hand.picture().getPixelAt (ring.getCentreX(), ring.getY() + beside)),
                           3.0);
        }

        HostWindow::screen->pressKey ("Shift_L", true);
        hand.type ("Tab");
        HostWindow::screen->pressKey ("Shift_L", false);
        const auto& last = *stops[count - 1];
        EXPECT_TRUE (hand.runUntil ([&] { return changedIn (last.getBounds()) > 0; })) << "Shift goes back";

        HostWindow::screen->focusWindowAt (1, 1); // the desktop
        EXPECT_TRUE (hand.runUntil ([&] { return changedIn (plain.getBounds()) == 0; }));
    }
}

// A program of the plug-in's own whose window holds the keyboard, with no way from there to the controls; bounds that a host gave
// before the window was shown, and that are lost then; a panel that keeps its half in a window that has room for the whole.
TEST (Showing, PassesTheKeyboardOnAndKeepsTheBounds)
{
    juce::Component window;
    EditorRig rig;
    const juce::Rectangle<int> bounds (438, 288);
    rig.editor->setBounds (bounds);
    window.setBounds (bounds);
    window.addAndMakeVisible (*rig.editor);
    window.setWantsKeyboardFocus (true);
    window.addToDesktop (0);
    window.setVisible (true);
    EXPECT_TRUE (pumpMessagesUntil ([] { return ! HostWindow::screen->openWindows().empty(); }));
    HostWindow::screen->focusTopmostWindow();
    EXPECT_TRUE (pumpMessagesUntil ([&] { return rig.editor->hasKeyboardFocus (false); }));
    EXPECT_EQ (rig.editor->getBounds(), bounds);

    rig.editor->setSize (512, 288);
    rig.set (toggleSize, 1.0f);
    EXPECT_EQ (rig.control ("mainWheelSlider").getX(), EditorRig (0, true).control ("mainWheelSlider").getX());
}
} // namespace
} // namespace tarvelline::test
