// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"
#include "widgets/FlatLookAndFeel.h"
#include "widgets/MyComboBox.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
TEST (FlatText, GrowsWithItsControlDownToAFloor)
{
    TarvellineLookAndFeel look;
    MidiOptionsLookAndFeel midiLook;
    juce::TextButton textButton;
    MyComboBox comboBox;

    for (const auto& [height, box, button, midiButton] :
         { std::tuple { 30, 24.0f, 24.0f, 12.0f }, std::tuple { 15, 16.0f, 12.0f, 6.0f },
           std::tuple { 20, 16.0f, 16.0f, 8.0f }, std::tuple { 5, 16.0f, 4.0f, 4.0f } })
    {
        comboBox.setSize (74, height);
        EXPECT_FLOAT_EQ (look.getComboBoxFont (comboBox).getHeight(), box);
        EXPECT_FLOAT_EQ (midiLook.getComboBoxFont (comboBox).getHeight(), box);
        EXPECT_FLOAT_EQ (look.getTextButtonFont (textButton, height).getHeight(), button);
        EXPECT_FLOAT_EQ (midiLook.getTextButtonFont (textButton, height).getHeight(), midiButton);
    }
}

// The framework's box around the text, or its arrow beside it, which pushes the text off the centre.
TEST (RangeBox, ShowsItsTextAloneAndCentred)
{
    TarvellineLookAndFeel look;
    MyComboBox box;
    box.setLookAndFeel (&look);
    box.addItemList ({ "2", "48" }, 1);
    box.setJustificationType (juce::Justification::centred);
    box.setSize (74, 50);
    EXPECT_TRUE (boundsOf (pictureOf (box), isInk).isEmpty());

    box.setSelectedItemIndex (1);
    const auto text = textsOf (box).at (0);
    EXPECT_EQ (text.text, "48");
    EXPECT_NEAR ((text.left + text.right) / 2.0f, 37.0f, 1.0f);
    EXPECT_FLOAT_EQ (text.height, 40.0f);
    EXPECT_LT (boundsOf (pictureOf (box), isInk).getRight(), static_cast<int> (text.right) + 2);
    box.setLookAndFeel (nullptr);
}

template <typename Look>
juce::Image bodyOf (juce::Button::ButtonState state, juce::Colour colour, bool enabled = true)
{
    Look look;
    look.setColour (juce::TextButton::buttonColourId, colour);
    juce::TextButton button;
    button.setLookAndFeel (&look);
    button.setEnabled (enabled);
    button.setSize (60, 40);
    button.setState (state);
    auto picture = pictureOf (button);
    button.setLookAndFeel (nullptr);
    return picture;
}

// A body that flashes under the mouse, or none that answers a press.
TEST (ButtonBody, ShowsOnlyWhilePressed)
{
    const auto isTinted = [] (juce::Colour colour) { return colour.getAlpha() > 0; };
    const juce::Rectangle<int> whole (60, 40), none;

    for (const auto colour : { juce::Colours::transparentBlack, juce::Colours::teal })
        for (const auto& [state, body] :
             { std::pair { juce::Button::buttonNormal, none }, std::pair { juce::Button::buttonOver, none },
               std::pair { juce::Button::buttonDown, whole } })
        {
            EXPECT_EQ (boundsOf (bodyOf<TarvellineLookAndFeel> (state, colour), isTinted), body) << state;
            EXPECT_EQ (boundsOf (bodyOf<MidiOptionsLookAndFeel> (state, colour), isTinted), body) << state;
        }
}

struct Item
{
    bool active = true, highlighted = false, ticked = false;
    const juce::Colour* colour = nullptr;
};

const juce::Rectangle<int> itemArea { 10, 20, 100, 32 };
const juce::Colour highlight (0xff364e65);

void drawItem (juce::Graphics& g, const Item& item)
{
    TarvellineLookAndFeel look;
    look.setColour (juce::PopupMenu::textColourId, juce::Colours::white);
    look.setColour (juce::PopupMenu::highlightedTextColourId, juce::Colours::yellow);
    look.setColour (juce::PopupMenu::highlightedBackgroundColourId, highlight);
    look.drawPopupMenuItem (g, itemArea, false, item.active, item.highlighted, item.ticked, true, "24", "Ctrl+K",
                            nullptr, item.colour);
}

DrawnText textOf (const Item& item)
{
    return textsDrawnBy (120, 60, [&] (juce::Graphics& g) { drawItem (g, item); }).at (0);
}

juce::Image pictureOf (const Item& item)
{
    juce::Image image (juce::Image::ARGB, 120, 60, true);
    juce::Graphics g (image);
    drawItem (g, item);
    return image;
}

// Text that moves when the tick appears, or a tick that touches it.
TEST (MenuItem, IsCentredBesideTheTicksPlace)
{
    for (const auto ticked : { false, true })
    {
        const auto text = textOf ({ true, false, ticked });
        EXPECT_EQ (text.text, "24");
        EXPECT_FLOAT_EQ (text.height, 20.0f);                                   // 2/3 of 30
        EXPECT_NEAR ((text.left + text.right) / 2.0f, (31 + 109) / 2.0f, 1.0f); // right of 20 pixels

        const auto tick = boundsOf (pictureOf ({ true, false, ticked }).getClippedImage ({ 11, 21, 20, 30 }), isInk);
        EXPECT_EQ (tick.isEmpty(), ! ticked);
        EXPECT_TRUE (! ticked || juce::Rectangle<int> (5, 0, 10, 30).contains (tick));
    }
}

} // namespace
} // namespace tarvelline::test
