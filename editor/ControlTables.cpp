// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/ControlTables.h"

namespace tarvelline
{
std::vector<Placement> placementsOf (EditorControls& c)
{
    return {
        { c.sizeButton, { 472.2f, 330.7f, 38.8f, 96.0f }, "sizeButton", "Show timbre section" },
        { c.mainWheelSlider, { 91.5f, 65.5f, 330.0f, 330.0f }, "mainWheelSlider", "Pitch wheel" },
        { c.pitchScaleSlider, { 41.5f, 15.5f, 430.0f, 430.0f }, "pitchScaleSlider", "Pitch scale" },
        { c.pitchDial, { 145.0f, 119.0f, 223.0f, 223.0f }, "pitchDial", "Sounding pitch shift" },
        { c.pitchInertiaSlider, { 216.6f, 421.6f, 77.0f, 77.0f }, "pitchInertiaSlider", "Pitch inertia" },
        { c.pitchGravitySlider, { 84.6f, 421.6f, 77.0f, 77.0f }, "pitchGravitySlider", "Pitch gravity" },
        { c.pitchSmoothSlider, { 350.6f, 421.6f, 77.0f, 77.0f }, "pitchSmoothSlider", "Pitch smooth" },
        { c.mixerSlider, { 446.6f, 503.6f, 47.0f, 47.0f }, "mixerSlider", "Mix" },
        { c.pitchRangeBox, { 24.5f, 21.9f, 74.0f, 49.6f }, "pitchRangeBox", "Pitch range in semitones" },
        { c.pitchSnapButton, { 416.2f, 21.9f, 74.0f, 49.6f }, "pitchSnapButton", "Pitch snap" },
        { c.midiModeButton, { 12.0f, 515.0f, 63.0f, 48.0f }, "midiModeButton", "MIDI note mode" },
        { c.keyboard, { 89.0f, 526.0f, 335.5f, 36.0f }, "keyboard", "Held notes" },
        { c.timbreWheelSlider, { 603.5f, 65.5f, 330.0f, 330.0f }, "timbreWheelSlider", "Timbre wheel" },
        { c.timbreScaleSlider, { 553.5f, 15.5f, 430.0f, 430.0f }, "timbreScaleSlider", "Timbre scale" },
        // A little smaller than the pitch dial; the centre is the timbre wheel's.
        { c.timbreDial, { 657.6f, 119.6f, 221.8f, 221.8f }, "timbreDial", "Sounding timbre shift" },
        { c.timbreInertiaSlider, { 728.6f, 421.6f, 77.0f, 77.0f }, "timbreInertiaSlider", "Timbre inertia" },
        { c.timbreGravitySlider, { 596.6f, 421.6f, 77.0f, 77.0f }, "timbreGravitySlider", "Timbre gravity" },
        { c.timbreSmoothSlider, { 862.6f, 421.6f, 77.0f, 77.0f }, "timbreSmoothSlider", "Timbre smooth" },
        { c.timbreRangeBox, { 536.5f, 21.9f, 74.0f, 49.6f }, "timbreRangeBox", "Timbre range in semitones" },
        { c.timbreSnapButton, { 928.2f, 21.9f, 74.0f, 49.6f }, "timbreSnapButton", "Timbre snap" },
    };
}

std::vector<juce::Component*> zOrderOf (EditorControls& c)
{
    return { &c.pitchDial,           &c.timbreDial,         &c.pitchScaleSlider,   &c.timbreScaleSlider,
             &c.mainWheelSlider,     &c.pitchGravitySlider, &c.pitchInertiaSlider, &c.pitchSmoothSlider,
             &c.mixerSlider,         &c.pitchRangeBox,      &c.pitchSnapButton,    &c.midiModeButton,
             &c.sizeButton,          &c.keyboard,           &c.timbreWheelSlider,  &c.timbreGravitySlider,
             &c.timbreInertiaSlider, &c.timbreSmoothSlider, &c.timbreRangeBox,     &c.timbreSnapButton,
             &c.focusRing,           &c.valueLabel };
}

std::vector<juce::Slider*> slidersOf (EditorControls& c)
{
    return { &c.mainWheelSlider,   &c.pitchGravitySlider,  &c.pitchInertiaSlider,  &c.pitchSmoothSlider,
             &c.timbreWheelSlider, &c.timbreGravitySlider, &c.timbreInertiaSlider, &c.timbreSmoothSlider,
             &c.mixerSlider,       &c.pitchScaleSlider,    &c.timbreScaleSlider };
}

std::vector<Binding<juce::Slider>> sliderBindingsOf (EditorControls& c)
{
    return { { c.mainWheelSlider, parameterId::mainWheelPar },
             { c.pitchGravitySlider, parameterId::mainGravityPar },
             { c.pitchInertiaSlider, parameterId::mainInertiaPar },
             { c.pitchSmoothSlider, parameterId::mainSmoothPar },
             { c.timbreWheelSlider, parameterId::timbWheelPar },
             { c.timbreGravitySlider, parameterId::timbGravityPar },
             { c.timbreInertiaSlider, parameterId::timbInertiaPar },
             { c.timbreSmoothSlider, parameterId::timbSmoothPar },
             { c.mixerSlider, parameterId::mixerPar } };
}

std::vector<Binding<juce::Button>> buttonBindingsOf (EditorControls& c)
{
    return { { c.pitchSnapButton, parameterId::mainSnap },
             { c.timbreSnapButton, parameterId::timbSnap },
             { c.sizeButton, parameterId::toggleSize },
             { c.midiModeButton, parameterId::midiOptions } };
}

std::vector<Binding<juce::ComboBox>> boxBindingsOf (EditorControls& c)
{
    return { { c.pitchRangeBox, parameterId::mainRange }, { c.timbreRangeBox, parameterId::timbRange } };
}

std::vector<PhysicsKnob> physicsKnobsOf (EditorControls& c, TarvellineAudioProcessor& processor)
{
    return { { c.pitchGravitySlider, processor.mainWheel, setGravity },
             { c.pitchInertiaSlider, processor.mainWheel, setInertia },
             { c.pitchSmoothSlider, processor.mainWheel, setSmooth },
             { c.timbreGravitySlider, processor.timbWheel, setGravity },
             { c.timbreInertiaSlider, processor.timbWheel, setInertia },
             { c.timbreSmoothSlider, processor.timbWheel, setSmooth } };
}
} // namespace tarvelline
