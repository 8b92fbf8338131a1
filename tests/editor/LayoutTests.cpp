// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

struct Placed
{
    const char* control;
    Rectangle<int> bounds;
};

/** The design, rounded to whole pixels. */
const Placed pitchSection[] = {
    { "sizeButton", { 472, 331, 39, 96 } },         { "mainWheelSlider", { 92, 66, 330, 330 } },
    { "pitchScaleSlider", { 42, 16, 430, 430 } },   { "pitchDial", { 145, 119, 223, 223 } },
    { "pitchInertiaSlider", { 217, 422, 77, 77 } }, { "pitchGravitySlider", { 85, 422, 77, 77 } },
    { "pitchSmoothSlider", { 351, 422, 77, 77 } },  { "mixerSlider", { 447, 504, 47, 47 } },
    { "pitchRangeBox", { 24, 22, 74, 50 } },        { "pitchSnapButton", { 416, 22, 74, 50 } },
    { "midiModeButton", { 12, 515, 63, 48 } },      { "keyboard", { 89, 526, 336, 36 } },
};
const Placed timbreSection[] = {
    { "timbreWheelSlider", { 604, 66, 330, 330 } },  { "timbreScaleSlider", { 554, 16, 430, 430 } },
    { "timbreDial", { 658, 120, 222, 222 } },        { "timbreInertiaSlider", { 729, 422, 77, 77 } },
    { "timbreGravitySlider", { 597, 422, 77, 77 } }, { "timbreSmoothSlider", { 863, 422, 77, 77 } },
    { "timbreRangeBox", { 536, 22, 74, 50 } },       { "timbreSnapButton", { 928, 22, 74, 50 } },
};

// A slip in the table of places, or a control left out of it.
TEST (Layout, IsTheDesignAtFullSize)
{
    EditorRig rig (
        [] (EditorRig& r)
        {
            r.set (parameterId::toggleSize, 1.0f);
            r.processor.uiHeight = 576;
        });

    for (const auto& [control, bounds] : pitchSection)
        EXPECT_EQ (rig.control (control).getBounds(), bounds) << control;

    for (const auto& [control, bounds] : timbreSection)
        EXPECT_EQ (rig.control (control).getBounds(), bounds) << control;

    EXPECT_EQ (rig.readOut().getWidth(), 32);
    EXPECT_EQ (rig.readOut().getHeight(), 16);
}

TEST (Layout, OfHalfModeIsTheLeftHalfOfTheDesign)
{
    EditorRig rig ([] (EditorRig& r) { r.processor.uiHeight = 576; });
    EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (512, 576));

    for (const auto& [control, bounds] : pitchSection)
        EXPECT_EQ (rig.control (control).getBounds(), bounds) << control;

    for (const auto& [control, bounds] : timbreSection)
        EXPECT_GE (rig.control (control).getX(), 512) << control;
}

struct ScaledCase
{
    bool full;
    int height;
    Placed place;
};

class Scaled : public testing::TestWithParam<ScaledCase>
{
};

// One factor for both axes, the half's width not doubled, or edges rounded instead of sizes.
TEST_P (Scaled, AlongEachAxisOfItsOwn)
{
    EditorRig rig (
        [] (EditorRig& r)
        {
            r.set (parameterId::toggleSize, GetParam().full ? 1.0f : 0.0f);
            r.processor.uiHeight = GetParam().height;
        });
    EXPECT_EQ (rig.control (GetParam().place.control).getBounds(), GetParam().place.bounds);
}

INSTANTIATE_TEST_SUITE_P (Table, Scaled,
                          testing::Values (ScaledCase { true, 288, { "mainWheelSlider", { 46, 33, 165, 165 } } },
                                           ScaledCase { true, 288, { "sizeButton", { 236, 165, 19, 48 } } },
                                           ScaledCase { false, 288, { "mainWheelSlider", { 46, 33, 165, 165 } } },
                                           ScaledCase { false, 400, { "mainWheelSlider", { 63, 45, 229, 229 } } },
                                           ScaledCase { false, 400, { "mixerSlider", { 310, 350, 33, 33 } } },
                                           ScaledCase { true, 258, { "keyboard", { 40, 236, 150, 16 } } },
                                           ScaledCase { true, 258, { "timbreDial", { 294, 54, 99, 99 } } }));

struct OpeningCase
{
    int storedHeight;
    bool full;
    int width, height;
};

class Opening : public testing::TestWithParam<OpeningCase>
{
};

// A height that the limits fit to a truncated width (500 opens at 499), or a stored one that no window can have.
TEST_P (Opening, TakesTheStoredHeight)
{
    const auto [stored, full, width, height] = GetParam();
    EditorRig rig (
        [stored = stored, full = full] (EditorRig& r)
        {
            r.set (parameterId::toggleSize, full ? 1.0f : 0.0f);
            r.processor.uiHeight = stored;
        });

    EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (width, height));
    EXPECT_EQ (rig.processor.uiHeight, stored) << "only a visible window records its height";
}

INSTANTIATE_TEST_SUITE_P (Table, Opening,
                          testing::Values (OpeningCase { 0, true, 512, 288 }, OpeningCase { 0, false, 256, 288 },
                                           OpeningCase { 500, true, 888, 500 }, OpeningCase { 500, false, 444, 500 },
                                           OpeningCase { 100, true, 458, 258 }, OpeningCase { 100, false, 229, 258 },
                                           OpeningCase { 9999, true, 1024, 576 }, OpeningCase { 9999, false, 512, 576 },
                                           OpeningCase { -7, false, 229, 258 }));

TEST (SizeToggle, KeepsTheHeight)
{
    EditorRig rig ([] (EditorRig& r) { r.processor.uiHeight = 400; });
    EXPECT_EQ (rig.editor->getWidth(), 355);

    rig.editor->setTopLeftPosition (30, 40);
    rig.toggle ("sizeButton", true);
    EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (30, 40, 711, 400));
    EXPECT_EQ (rig.control ("mainWheelSlider").getX(), 64); // laid out anew: 91.5 * 711 / 1024

    rig.toggle ("sizeButton", false);
    EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (30, 40, 355, 400));
    EXPECT_EQ (rig.processor.uiHeight, 400);
}

// The limits in force when a user drags the corner.
TEST (Resizing, KeepsTheModesProportionsWithinTheLimits)
{
    EditorRig rig;
    auto& limits = *rig.editor->getConstrainer();
    EXPECT_TRUE (rig.editor->isResizable());
    EXPECT_EQ (limits.getMinimumHeight(), 258);
    EXPECT_EQ (limits.getMinimumWidth(), 1);
    EXPECT_EQ (limits.getMaximumWidth(), 1024);
    EXPECT_EQ (limits.getMaximumHeight(), 576);
    EXPECT_NEAR (limits.getFixedAspectRatio(), 0.88889, 1.0e-6);

    rig.toggle ("sizeButton", true);
    EXPECT_NEAR (limits.getFixedAspectRatio(), 1.77778, 1.0e-6);
}

TEST (Resizing, IsRecordedForTheNextWindow)
{
    EditorRig rig;
    rig.editor->setSize (355, 400);
    EXPECT_EQ (rig.processor.uiHeight, 400);

    rig.open();
    EXPECT_EQ (rig.editor->getHeight(), 400);
}

// The dials lie under the scales, the scales under the wheels, the read-out over everything.
TEST (Layout, StacksTheControls)
{
    EditorRig rig;
    juce::StringArray ids;

    for (auto* child : rig.editor->getChildren())
        if (dynamic_cast<juce::ResizableCornerComponent*> (child) == nullptr)
            ids.add (child->getComponentID());

    EXPECT_EQ (ids.joinIntoString (" "),
               "pitchDial timbreDial pitchScaleSlider timbreScaleSlider mainWheelSlider pitchGravitySlider "
               "pitchInertiaSlider pitchSmoothSlider mixerSlider pitchRangeBox pitchSnapButton midiModeButton "
               "sizeButton keyboard timbreWheelSlider timbreGravitySlider timbreInertiaSlider timbreSmoothSlider "
               "timbreRangeBox timbreSnapButton ");
}

// The dial's ring must not take the clicks that are meant for the wheel around it, nor a scale those of the panel.
TEST (Layout, DisplaysLeaveTheMouseToTheControls)
{
    EditorRig rig;

    for (const auto* id : { "pitchDial", "timbreDial", "pitchScaleSlider", "timbreScaleSlider", "keyboard" })
    {
        const auto& display = rig.control (id);
        EXPECT_NE (rig.editor->getComponentAt (display.getBounds().getCentre()), &display) << id;
    }

    EXPECT_EQ (rig.editor->getComponentAt (rig.control ("pitchDial").getBounds().getCentre()),
               &rig.control ("mainWheelSlider"));
}
} // namespace
} // namespace tarvelline::test
