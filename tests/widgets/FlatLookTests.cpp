// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"

namespace tarvelline::test
{
namespace
{
/** An entry of a range's menu, on the menu's ground. */
struct MenuItem : juce::Component
{
    void paint (juce::Graphics& g) override
    {
        auto& look = rig.control ("pitchRangeBox").getLookAndFeel();
        look.drawPopupMenuBackground (g, getWidth(), getHeight());
        look.drawPopupMenuItem (g, { 10, 20, 100, 32 }, false, true, lit, ticked, true, "24", "Ctrl+K", nullptr,
                                nullptr);
    }

    EditorRig rig;
    bool lit = false, ticked = false;
};

// Text that moves when the tick appears, or a tick that touches it; text or tick that drowns in the ground, a highlight that
// cannot be told from it.
TEST (MenuItem, IsLegibleAndCentredBesideTheTicksPlace)
{
    MenuItem item;
    item.setSize (120, 60);

    for (const auto& [lit, ticked] : { std::pair { false, false }, { false, true }, { true, false }, { true, true } })
    {
        item.lit = lit;
        item.ticked = ticked;
        const auto picture = pictureOf (item);
        const auto around = picture.getPixelAt (9, 40), ground = picture.getPixelAt (11, 50);
        EXPECT_TRUE (lit ? contrastRatio (ground, around) >= 2.3 : ground == around); // black would give 2.46

        const auto text = textsOf (item).at (0);
        EXPECT_EQ (text.text, "24");
        EXPECT_GE (contrastRatio (text.colour, ground), 4.5);
        EXPECT_FLOAT_EQ (text.height, 20.0f);                                   // 2/3 of 30
        EXPECT_NEAR ((text.left + text.right) / 2.0f, (31 + 109) / 2.0f, 1.0f); // right of 20 pixels

        const auto tick = boundsOf (picture.getClippedImage ({ 11, 21, 20, 30 }),
                                    [=] (auto colour) { return contrastRatio (colour, ground) > 4.5; });
        EXPECT_EQ (tick.isEmpty(), ! ticked);
        EXPECT_TRUE (! ticked || juce::Rectangle<int> (5, 0, 10, 30).contains (tick));
    }
}
} // namespace
} // namespace tarvelline::test
