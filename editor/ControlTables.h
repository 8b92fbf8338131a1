// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/TarvellineAudioProcessor.h"
#include "widgets/FocusRing.h"
#include "widgets/FollowDial.h"
#include "widgets/HostedControl.h"
#include "widgets/Keyboard.h"
#include "widgets/ModeButton.h"
#include "widgets/MyComboBox.h"
#include "widgets/SnapSlider.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <vector>

namespace tarvelline
{
/** Every control of the window, in the order of construction. The timbre section mirrors the pitch section. */
struct EditorControls
{
    HostedControl<juce::TextButton> sizeButton;
    HostedControl<juce::TextButton> pitchSnapButton { "Off" };
    HostedControl<ModeButton> midiModeButton { "Multi" };
    HostedControl<SnapSlider> mainWheelSlider;
    SnapSlider pitchScaleSlider; // shows the scale; attached to nothing
    HostedControl<SnapSlider> pitchGravitySlider;
    HostedControl<SnapSlider> pitchInertiaSlider;
    HostedControl<MyComboBox> pitchRangeBox;
    HostedControl<SnapSlider> pitchSmoothSlider;
    HostedControl<SnapSlider> mixerSlider;
    FollowDial pitchDial;
    Keyboard keyboard;
    juce::Label valueLabel; // the read-out above a knob
    HostedControl<SnapSlider> timbreWheelSlider;
    SnapSlider timbreScaleSlider; // shows the scale; attached to nothing
    HostedControl<juce::TextButton> timbreSnapButton { "Off" };
    HostedControl<SnapSlider> timbreGravitySlider;
    HostedControl<SnapSlider> timbreInertiaSlider;
    HostedControl<SnapSlider> timbreSmoothSlider;
    HostedControl<MyComboBox> timbreRangeBox;
    FollowDial timbreDial;
    FocusRing focusRing; // around the one that has the keyboard
};

/** The design space: all geometry is given in it and scaled to the window. Also the largest window, in pixels. */
inline constexpr int designWidth = 1024, designHeight = 576;

/** Where a control lies in the design space, its component ID and what a screen reader calls it. */
struct Placement
{
    juce::Component& control;
    juce::Rectangle<float> bounds;
    const char* id;
    const char* title;
};

/** A control and the parameter it shows and moves. */
template <typename Control>
struct Binding
{
    Control& control;
    const char* parameter;
};

/** A knob that shapes a wheel's motion, and how. */
struct PhysicsKnob
{
    juce::Slider& control;
    WheelRecord& wheel;
    void (*apply) (WheelRecord&, double);
};

std::vector<Placement> placementsOf (EditorControls&);    // in the order of laying out
std::vector<juce::Component*> zOrderOf (EditorControls&); // bottom to top
std::vector<juce::Slider*> slidersOf (EditorControls&);   // in the order of styling
std::vector<Binding<juce::Slider>> sliderBindingsOf (EditorControls&);
std::vector<Binding<juce::Button>> buttonBindingsOf (EditorControls&);
std::vector<Binding<juce::ComboBox>> boxBindingsOf (EditorControls&);
std::vector<PhysicsKnob> physicsKnobsOf (EditorControls&, TarvellineAudioProcessor&);
} // namespace tarvelline
