// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

TEST (FreshWindow, ShowsTheDefaults)
{
    EditorRig rig;
    EXPECT_EQ (rig.editor->getBounds(), juce::Rectangle<int> (256, 288));
    EXPECT_EQ (rig.textOf ("pitchSnapButton"), "On");
    EXPECT_EQ (rig.textOf ("timbreSnapButton"), "On");
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Single");
    EXPECT_EQ (rig.textOf ("sizeButton"), "");
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 12.0);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), 12.0);
    EXPECT_EQ (rig.processor.bendSteps, 12.0);
    EXPECT_TRUE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.0f) << "opening in Single fades the output in";
    EXPECT_FALSE (rig.readOut().isVisible());
}

// Controls that show one thing while the processor does another.
TEST (FreshWindow, ShowsStoredSettings)
{
    EditorRig rig (
        [] (EditorRig& r)
        {
            r.processor.outputGain = 0.7f;
            for (const auto* off : { mainSnap, timbSnap, midiOptions })
                r.set (off, 0.0f);
            r.set (mainRange, 5.0f);
            r.set (timbRange, 1.0f);
        });

    EXPECT_EQ (rig.textOf ("pitchSnapButton"), "Off");
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Multi");
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 0.0);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), 48.0);
    EXPECT_EQ (rig.snapTo ("timbreScaleSlider"), 4.0);
    EXPECT_EQ (rig.processor.bendSteps, 0.0);
    EXPECT_FALSE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.7f) << "Multi leaves the level alone";
}

// Attachments crossed, or one missing: both ways, with a value that no other control has.
TEST (Binding, ControlsAndParametersMoveEachOther)
{
    EditorRig rig;
    auto value = 0.15f;

    for (const auto& [control, id] : boundSliders)
    {
        rig.slider (control).setValue (static_cast<double> (value), juce::sendNotificationSync);
        EXPECT_NEAR (rig.get (id), value, 1.0e-6f) << control;
        rig.set (id, value + 0.02f);
        EXPECT_NEAR (rig.slider (control).getValue(), static_cast<double> (value) + 0.02, 1.0e-6) << id;
        value += 0.08f;
    }

    for (const auto& [control, id] : boundButtons)
    {
        const auto& button = rig.control<juce::Button> (control);
        rig.set (id, 0.49f);
        EXPECT_FALSE (button.getToggleState()) << id;
        rig.set (id, 0.5f);
        EXPECT_TRUE (button.getToggleState()) << id;
        rig.toggle (control, false);
        EXPECT_EQ (rig.get (id), 0.0f) << control;
    }

    for (const auto& [control, id] : boundBoxes)
    {
        rig.choose (control, 5);
        EXPECT_EQ (rig.get (id), 5.0f) << control;
        rig.set (id, 2.0f);
        EXPECT_EQ (rig.control<juce::ComboBox> (control).getText(), "6") << id;
    }
}

TEST (Binding, RestoredStateReachesTheOpenWindow)
{
    EditorRig source, rig;
    for (auto i = 0; i < 15; ++i)
        source.set (parameterTable[static_cast<size_t> (i)].id,
                    parameterTable[static_cast<size_t> (i)].rangeEnd * (i % 2 == 0 ? 0.2f : 0.6f));

    juce::MemoryBlock state;
    source.processor.getStateInformation (state);
    rig.processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));

    for (const auto& [control, id] : boundSliders)
        EXPECT_NEAR (rig.slider (control).getValue(), static_cast<double> (source.get (id)), 1.0e-6) << control;
    for (const auto& [control, id] : boundButtons)
        EXPECT_EQ (rig.control<juce::Button> (control).getToggleState(), source.get (id) >= 0.5f) << control;
    for (const auto& [control, id] : boundBoxes)
        EXPECT_EQ (rig.control<juce::ComboBox> (control).getSelectedItemIndex(), juce::roundToInt (source.get (id)));
    EXPECT_EQ (rig.textOf ("pitchSnapButton"), source.textOf ("pitchSnapButton"));
    EXPECT_EQ (rig.processor.bendSteps, source.processor.bendSteps);
}

class RangeBox : public testing::TestWithParam<std::pair<int, double>>
{
};

// The bend quantised to another grid than the wheel, or timbre's range leaking into the pitch bend.
TEST_P (RangeBox, SetsTheGridsOfItsSection)
{
    const auto [index, steps] = GetParam();
    EditorRig rig;
    rig.choose ("pitchRangeBox", index);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), steps);
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), steps);
    EXPECT_EQ (rig.processor.bendSteps, steps);
    EXPECT_EQ (rig.snapTo ("timbreScaleSlider"), 12.0);

    rig.choose ("pitchRangeBox", 3);
    rig.choose ("timbreRangeBox", index);
    EXPECT_EQ (rig.snapTo ("timbreScaleSlider"), steps);
    EXPECT_EQ (rig.snapTo ("timbreWheelSlider"), steps);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), 12.0);
    EXPECT_EQ (rig.processor.bendSteps, 12.0);
}

INSTANTIATE_TEST_SUITE_P (Table, RangeBox,
                          testing::Values (std::pair { 0, 2.0 }, std::pair { 1, 4.0 }, std::pair { 2, 6.0 },
                                           std::pair { 4, 24.0 }, std::pair { 5, 48.0 }, std::pair { -1, 2.0 }));

TEST (RangeChange, RedrawsTheScale)
{
    EditorRig rig;
    for (const auto& [box, scale] :
         { std::pair { "pitchRangeBox", "pitchScaleSlider" }, std::pair { "timbreRangeBox", "timbreScaleSlider" } })
    {
        juce::Rectangle<int> repainted;
        RepaintListener::listenTo (rig.control (scale), [&] (auto area) { repainted = repainted.getUnion (area); });
        rig.choose (box, 4);
        EXPECT_EQ (repainted, rig.control (scale).getLocalBounds()) << scale;
    }
}

TEST (SnapButton, FreesTheWheelButNotTheScale)
{
    EditorRig rig;
    rig.toggle ("pitchSnapButton", false);
    EXPECT_EQ (rig.textOf ("pitchSnapButton"), "Off");
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 0.0);
    EXPECT_EQ (rig.processor.bendSteps, 0.0);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), 12.0);

    rig.choose ("pitchRangeBox", 4);
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 0.0);
    EXPECT_EQ (rig.snapTo ("pitchScaleSlider"), 24.0);

    rig.toggle ("pitchSnapButton", true);
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 24.0);
    EXPECT_EQ (rig.processor.bendSteps, 24.0);
}

// Pitch-bend belongs to the pitch side alone.
TEST (SnapButton, OfTimbreLeavesThePitchBend)
{
    EditorRig rig;
    rig.toggle ("timbreSnapButton", false);
    EXPECT_EQ (rig.textOf ("timbreSnapButton"), "Off");
    EXPECT_EQ (rig.snapTo ("timbreWheelSlider"), 0.0);
    EXPECT_EQ (rig.snapTo ("timbreScaleSlider"), 12.0);

    rig.choose ("timbreRangeBox", 5);
    EXPECT_EQ (rig.snapTo ("timbreWheelSlider"), 0.0);
    EXPECT_EQ (rig.snapTo ("timbreScaleSlider"), 48.0);
    EXPECT_EQ (rig.snapTo ("mainWheelSlider"), 12.0);
    EXPECT_EQ (rig.processor.bendSteps, 12.0);
}

TEST (MidiModeButton, RestartsTheFadeInOnlyForSingle)
{
    EditorRig rig;
    rig.processor.outputGain = 0.8f;
    rig.toggle ("midiModeButton", false);
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Multi");
    EXPECT_FALSE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.8f);

    rig.toggle ("midiModeButton", true);
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Single");
    EXPECT_TRUE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.0f);
}

struct KnobCase
{
    const char* knob;
    bool timbre;
    double value;
    RelaxedAtomic<double> WheelRecord::*field;
    double expected;
};

void PrintTo (const KnobCase& knob, std::ostream* out) { *out << knob.knob << " at " << knob.value; }

class PhysicsKnob : public testing::TestWithParam<KnobCase>
{
};

// A knob that acts only after the next refresh, with another curve than the refresh has, or on the other wheel.
TEST_P (PhysicsKnob, ShapesItsWheelAtOnce)
{
    const auto [knob, timbre, value, field, expected] = GetParam();
    EditorRig rig; // at 44.1 kHz the time scale is 1
    auto& wheel = timbre ? rig.processor.timbWheel : rig.processor.mainWheel;
    auto& other = timbre ? rig.processor.mainWheel : rig.processor.timbWheel;
    const double otherBefore = other.*field;
    rig.slider (knob).setValue (value, juce::sendNotificationSync);

    EXPECT_NEAR (wheel.*field, expected, expected * 1.0e-6);
    EXPECT_EQ (other.*field, otherBefore);
}

INSTANTIATE_TEST_SUITE_P (
    Table, PhysicsKnob,
    testing::Values (KnobCase { "pitchGravitySlider", false, 0.8, &WheelRecord::gravityAmount, 0.32968 },
                     KnobCase { "pitchGravitySlider", false, 0.8, &WheelRecord::pull, 1.31872e-3 },
                     KnobCase { "pitchGravitySlider", false, 1.0, &WheelRecord::gravityAmount, 1.0 },
                     KnobCase { "pitchInertiaSlider", false, 0.8, &WheelRecord::acceleration, 8.5e-9 },
                     KnobCase { "pitchInertiaSlider", false, 0.8, &WheelRecord::inertiaAmount, 0.8 },
                     KnobCase { "pitchSmoothSlider", false, 0.5, &WheelRecord::slewStep, 6.8988306e-6 },
                     KnobCase { "pitchSmoothSlider", false, 1.0, &WheelRecord::slewStep, 8.1e-7 },
                     KnobCase { "timbreGravitySlider", true, 0.8, &WheelRecord::pull, 1.31872e-3 },
                     KnobCase { "timbreInertiaSlider", true, 0.8, &WheelRecord::acceleration, 8.5e-9 },
                     KnobCase { "timbreSmoothSlider", true, 0.5, &WheelRecord::slewStep, 6.8988306e-6 },
                     KnobCase { "timbreSmoothSlider", true, 0.5, &WheelRecord::smoothAmount, 0.5 }));

class ReadOut : public testing::TestWithParam<const char*>
{
};

TEST_P (ReadOut, ShowsTwoDecimalsAboveTheKnob)
{
    EditorRig rig (
        [] (EditorRig& r)
        {
            r.set (toggleSize, 1.0f);
            r.processor.uiHeight = 576;
        });
    auto& knob = rig.slider (GetParam());
    knob.setValue (0.3, juce::sendNotificationSync);

    EXPECT_TRUE (rig.readOut().isVisible());
    EXPECT_EQ (rig.readOut().getText(), "0.30");
    EXPECT_EQ (rig.readOut().getFont().getTypefaceName(), "Sci Fied 2002");
    EXPECT_EQ (rig.readOut().getBounds().getCentre(),
               juce::Point<int> (knob.getX() + knob.getWidth() / 2, knob.getY() - 12));
    EXPECT_FALSE (rig.readOut().getBounds().intersects (knob.getBounds()));
}

INSTANTIATE_TEST_SUITE_P (Knobs, ReadOut,
                          testing::Values ("pitchGravitySlider", "pitchInertiaSlider", "pitchSmoothSlider",
                                           "timbreGravitySlider", "timbreInertiaSlider", "timbreSmoothSlider",
                                           "mixerSlider"));

void tick (EditorRig& rig, int times)
{
    for (auto i = 0; i < times; ++i)
        rig.editor->timerCallback();
}

TEST (ReadOutTime, IsTwentyFiveTicksFromTheLastMove)
{
    EditorRig rig;
    rig.slider ("mixerSlider").setValue (0.3, juce::sendNotificationSync);
    tick (rig, 17);
    rig.slider ("mixerSlider").setValue (0.4, juce::sendNotificationSync);
    tick (rig, 24);
    EXPECT_TRUE (rig.readOut().isVisible());
    tick (rig, 1);
    EXPECT_FALSE (rig.readOut().isVisible());
}

TEST (ReadOutTime, EndsWithAResize)
{
    EditorRig rig;
    rig.slider ("mixerSlider").setValue (0.3, juce::sendNotificationSync);
    rig.editor->setSize (355, 400);
    EXPECT_FALSE (rig.readOut().isVisible());
}

TEST (ReadOutTime, IsNoneForTheWheels)
{
    EditorRig rig;
    for (const auto* wheel : { "mainWheelSlider", "timbreWheelSlider" })
    {
        rig.slider (wheel).setValue (0.3, juce::sendNotificationSync);
        EXPECT_FALSE (rig.readOut().isVisible()) << wheel;
    }
}

// The strip repainted all the time, or never again after the first note.
TEST (KeyboardStrip, IsRepaintedOncePerChange)
{
    EditorRig rig;
    tick (rig, 1);
    auto repaints = 0;
    auto& strip = rig.control ("keyboard");
    RepaintListener::listenTo (strip,
                               [&] (juce::Rectangle<int> area)
                               {
                                   EXPECT_EQ (area, strip.getLocalBounds());
                                   ++repaints;
                               });

    for (const auto isOn : { true, false })
    {
        rig.processor.noteEvent (60, isOn);
        rig.processor.voices.keysChanged = true; // a release in flight flags it later, with the audio
        tick (rig, 3);
        EXPECT_FALSE (rig.processor.voices.keysChanged);
    }

    EXPECT_EQ (repaints, 2);
}
} // namespace
} // namespace tarvelline::test
