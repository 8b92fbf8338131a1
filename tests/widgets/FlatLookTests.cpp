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
struct TextSize
{
    int height;
    float box, button, midiButton; // font heights
};

class FlatText : public testing::TestWithParam<TextSize>
{
};

TEST_P (FlatText, GrowsWithItsControlDownToAFloor)
{
    const auto [height, box, button, midiButton] = GetParam();
    TarvellineLookAndFeel look;
    MidiOptionsLookAndFeel midiLook;
    juce::TextButton textButton;
    MyComboBox comboBox;
    comboBox.setSize (74, height);

    EXPECT_FLOAT_EQ (look.getComboBoxFont (comboBox).getHeight(), box);
    EXPECT_FLOAT_EQ (midiLook.getComboBoxFont (comboBox).getHeight(), box);
    EXPECT_FLOAT_EQ (look.getTextButtonFont (textButton, height).getHeight(), button);
    EXPECT_FLOAT_EQ (midiLook.getTextButtonFont (textButton, height).getHeight(), midiButton);
}

INSTANTIATE_TEST_SUITE_P (Table, FlatText,
                          testing::Values (TextSize { 30, 24.0f, 24.0f, 12.0f }, TextSize { 15, 16.0f, 12.0f, 6.0f },
                                           TextSize { 20, 16.0f, 16.0f, 8.0f }, TextSize { 5, 16.0f, 4.0f, 4.0f }));

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
    const auto texts = textsOf (box);
    ASSERT_EQ (texts.size(), 1u);
    EXPECT_EQ (texts[0].text, "48");
    EXPECT_NEAR ((texts[0].left + texts[0].right) / 2.0f, 37.0f, 1.0f);
    EXPECT_FLOAT_EQ (texts[0].height, 40.0f);

    const auto ink = boundsOf (pictureOf (box), isInk).toFloat();
    EXPECT_GT (ink.getX(), texts[0].left - 2.0f);
    EXPECT_LT (ink.getRight(), texts[0].right + 2.0f);
    box.setLookAndFeel (nullptr);
}

/** A button's body, pixel by pixel, in the state given. */
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

bool isTinted (juce::Colour colour) { return colour.getAlpha() > 0; }

// A body that flashes under the mouse, or none that answers a press.
TEST (ButtonBody, ShowsOnlyWhilePressed)
{
    using juce::Button;

    for (const auto colour : { juce::Colours::transparentBlack, juce::Colours::teal })
    {
        EXPECT_TRUE (boundsOf (bodyOf<TarvellineLookAndFeel> (Button::buttonNormal, colour), isTinted).isEmpty());
        EXPECT_TRUE (boundsOf (bodyOf<TarvellineLookAndFeel> (Button::buttonOver, colour), isTinted).isEmpty());
        EXPECT_TRUE (boundsOf (bodyOf<MidiOptionsLookAndFeel> (Button::buttonOver, colour), isTinted).isEmpty());
        EXPECT_EQ (boundsOf (bodyOf<TarvellineLookAndFeel> (Button::buttonDown, colour), isTinted),
                   juce::Rectangle<int> (60, 40));
        EXPECT_EQ (boundsOf (bodyOf<MidiOptionsLookAndFeel> (Button::buttonDown, colour), isTinted),
                   juce::Rectangle<int> (60, 40));
    }
}

TEST (ButtonBody, IsRoundedAndContrastsWithItsColour)
{
    const auto body = bodyOf<TarvellineLookAndFeel> (juce::Button::buttonDown, juce::Colour (0xff404040));
    EXPECT_EQ (body.getPixelAt (30, 20), juce::Colour (0xff404040).contrasting (0.1f));
    EXPECT_EQ (body.getPixelAt (0, 0).getAlpha(), 0);
    EXPECT_LT (body.getPixelAt (1, 1).getAlpha(), 64);  // outside a corner of 6 pixels ...
    EXPECT_EQ (body.getPixelAt (3, 3).getAlpha(), 255); // ... and inside it
    EXPECT_EQ (body.getPixelAt (8, 1).getAlpha(), 255);

    const auto disabled = bodyOf<TarvellineLookAndFeel> (juce::Button::buttonDown, juce::Colour (0xff404040), false);
    EXPECT_EQ (disabled.getPixelAt (30, 20).getAlpha(), juce::Colour (0x80404040).contrasting (0.1f).getAlpha());
}

struct Item
{
    bool active = true, highlighted = false, ticked = false;
    const juce::Colour* colour = nullptr;
};

constexpr auto highlight = 0xff364e65;
const juce::Rectangle<int> itemArea { 10, 20, 100, 32 };

void drawItem (juce::Graphics& g, const Item& item)
{
    TarvellineLookAndFeel look;
    look.setColour (juce::PopupMenu::textColourId, juce::Colours::white);
    look.setColour (juce::PopupMenu::highlightedTextColourId, juce::Colours::yellow);
    look.setColour (juce::PopupMenu::highlightedBackgroundColourId, juce::Colour (highlight));
    look.drawPopupMenuItem (g, itemArea, false, item.active, item.highlighted, item.ticked, true, "24", "Ctrl+K",
                            nullptr, item.colour);
}

DrawnText textOf (const Item& item)
{
    const auto texts = textsDrawnBy (120, 60, [&] (juce::Graphics& g) { drawItem (g, item); });
    EXPECT_EQ (texts.size(), 1u) << "the shortcut is not drawn";
    return texts.at (0);
}

juce::Image pictureOf (const Item& item)
{
    juce::Image image (juce::Image::ARGB, 120, 60, true);
    juce::Graphics g (image);
    drawItem (g, item);
    return image;
}

TEST (MenuItem, IsCentredBesideTheTicksPlace)
{
    for (const auto ticked : { false, true })
    {
        const auto text = textOf ({ true, false, ticked });
        EXPECT_EQ (text.text, "24");
        EXPECT_FLOAT_EQ (text.height, 20.0f);                                   // 2/3 of 30
        EXPECT_NEAR ((text.left + text.right) / 2.0f, (31 + 109) / 2.0f, 1.0f); // right of 20 pixels
    }
}

TEST (MenuItem, ShowsItsTickOnTheLeft)
{
    const auto ink = [] (bool ticked)
    {
        const juce::Rectangle<int> place (11, 21, 20, 30);
        return boundsOf (pictureOf ({ true, false, ticked }).getClippedImage (place), isInk);
    };

    EXPECT_TRUE (ink (false).isEmpty());
    EXPECT_GE (ink (true).getX(), 5);
    EXPECT_LE (ink (true).getRight(), 15);
    EXPECT_GE (ink (true).getWidth(), 8);
}

TEST (MenuItem, TellsItsStateByColour)
{
    const auto own = juce::Colours::red;
    EXPECT_EQ (textOf ({}).colour, juce::Colours::white);
    EXPECT_EQ (textOf ({ true, false, false, &own }).colour, own);
    EXPECT_EQ (textOf ({ true, true, false, &own }).colour, juce::Colours::yellow);
    EXPECT_EQ (textOf ({ false, true, false, &own }).colour, own.withMultipliedAlpha (0.5f));

    EXPECT_EQ (boundsOf (pictureOf ({ true, true }), isInk), itemArea.reduced (1));
    EXPECT_EQ (pictureOf ({ true, true }).getPixelAt (100, 25), juce::Colour (highlight));
    EXPECT_FALSE (isInk (pictureOf ({ false, true }).getPixelAt (100, 25))) << "inactive: never highlighted";
}
} // namespace
} // namespace tarvelline::test
