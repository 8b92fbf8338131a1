// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/PixelMeters.h"

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

// Circles stretched to ellipses where a host forces other proportions, and proportions "mended" that are right as hosts round.
TEST (Layout, KeepsItsProportionsInForcedBounds)
{
    for (const auto& [full, window, wheel] :
         { std::tuple { false, Rectangle<int> (438, 288), Rectangle<int> (137, 33, 165, 165) },
           { false, { 256, 400 }, { 46, 89, 165, 165 } },
           { true, { 512, 400 }, { 46, 89, 165, 165 } },
           { true, { 515, 288 }, { 47, 33, 165, 165 } },
           { false, { 356, 400 }, { 64, 45, 229, 229 } } })
    {
        EditorRig rig (288, full);
        rig.editor->setBounds (window);
        EXPECT_EQ (rig.control ("mainWheelSlider").getBounds(), wheel) << window.toString();
        EXPECT_EQ (rig.processor.uiHeight, window.getHeight());

        const auto around =
            pictureOf (*rig.editor).getPixelAt (0, window.getHeight() - 1); // ground, not the panel's lower edge
        EXPECT_EQ (luminance (around) > 0.15, window.getWidth() != 356) << window.toString();
    }
}

// A height that the limits fit to a truncated width (500 opens at 499), or a stored one that no window can have.
TEST (Opening, TakesTheStoredHeight)
{
    for (const auto& [stored, full, width, height] :
         { std::tuple { 0, true, 512, 288 }, std::tuple { 0, false, 256, 288 }, std::tuple { 500, true, 888, 500 },
           std::tuple { 500, false, 444, 500 }, std::tuple { 100, true, 458, 258 }, std::tuple { 100, false, 229, 258 },
           std::tuple { 9999, true, 1024, 576 }, std::tuple { 9999, false, 512, 576 },
           std::tuple { -7, false, 229, 258 } })
    {
        EditorRig rig (stored, full);
        EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (width, height));
        EXPECT_EQ (rig.processor.uiHeight, stored) << "only a visible window records its height";
    }
}

// Limits that a host does not know of, or a ratio that reaches out of the window that a host gives to the editor.
TEST (Resizing, HasLimitsButTakesAHostsBounds)
{
    EditorRig rig;
    const auto& limits = *rig.editor->getConstrainer();
    EXPECT_TRUE (rig.editor->isResizable());
    EXPECT_EQ (limits.getMinimumHeight(), 258);
    EXPECT_EQ (limits.getMinimumWidth(), 1);
    EXPECT_EQ (limits.getMaximumWidth(), 1024);
    EXPECT_EQ (limits.getMaximumHeight(), 576);

    rig.editor->setBoundsConstrained ({ 438, 288 });
    EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (438, 288));
}
} // namespace
} // namespace tarvelline::test
