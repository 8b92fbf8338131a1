// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

// A half mode that squeezes the whole design, one factor for both axes, or edges rounded instead of sizes; a control that is
// not on its place in the artwork.
TEST (Layout, ScalesEachAxisByItself)
{
    for (const auto& [height, full, control, bounds] :
         { std::tuple { 576, true, "mainWheelSlider", Rectangle<int> (92, 66, 330, 330) },
           { 576, false, "pitchDial", { 145, 119, 223, 223 } },
           { 576, false, "midiModeButton", { 12, 515, 63, 48 } },
           { 576, false, "pitchGravitySlider", { 85, 422, 77, 77 } },
           { 288, true, "sizeButton", { 236, 165, 19, 48 } },
           { 288, false, "mainWheelSlider", { 46, 33, 165, 165 } },
           { 400, false, "mainWheelSlider", { 63, 45, 229, 229 } },
           { 400, false, "mixerSlider", { 310, 350, 33, 33 } },
           { 258, true, "keyboard", { 40, 236, 150, 16 } },
           { 258, true, "timbreDial", { 294, 54, 99, 99 } } })
        EXPECT_EQ (EditorRig (height, full).control (control).getBounds(), bounds) << control << " at " << height;

    EditorRig rig (576, true);

    for (const juce::String control :
         { "ScaleSlider", "GravitySlider", "InertiaSlider", "SmoothSlider", "RangeBox", "SnapButton" })
        EXPECT_EQ (rig.control ("timbre" + control).getBounds(),
                   rig.control ("pitch" + control).getBounds() + juce::Point (512, 0))
            << control;
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
