// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"
#include "widgets/FlatLookAndFeel.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
struct MenuItem : juce::Component
{
    void paint (juce::Graphics& g) override
    {
        look.setColour (juce::PopupMenu::textColourId, juce::Colours::white);
        look.drawPopupMenuItem (g, { 10, 20, 100, 32 }, false, true, false, ticked, true, "24", "Ctrl+K", nullptr,
                                nullptr);
    }

    TarvellineLookAndFeel look;
    bool ticked = false;
};

// Text that moves when the tick appears, or a tick that touches it.
TEST (MenuItem, IsCentredBesideTheTicksPlace)
{
    MenuItem item;
    item.setSize (120, 60);

    for (const auto ticked : { false, true })
    {
        item.ticked = ticked;
        const auto text = textsOf (item).at (0);
        EXPECT_EQ (text.text, "24");
        EXPECT_EQ (text.colour, juce::Colours::white);
        EXPECT_FLOAT_EQ (text.height, 20.0f);                                   // 2/3 of 30
        EXPECT_NEAR ((text.left + text.right) / 2.0f, (31 + 109) / 2.0f, 1.0f); // right of 20 pixels

        const auto tick = boundsOf (pictureOf (item).getClippedImage ({ 11, 21, 20, 30 }), isInk);
        EXPECT_EQ (tick.isEmpty(), ! ticked);
        EXPECT_TRUE (! ticked || juce::Rectangle<int> (5, 0, 10, 30).contains (tick));
    }
}
} // namespace
} // namespace tarvelline::test
