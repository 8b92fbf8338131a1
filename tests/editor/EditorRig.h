// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/TarvellineAudioProcessorEditor.h"
#include "tests/support/PixelMeters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <memory>

namespace tarvelline::test
{
/** A prepared processor with its window open, off the screen. */
struct EditorRig : ProcessorRig
{
    /** @param storedHeight  of the last window, 0 = none, @param full  the size mode */
    explicit EditorRig (int storedHeight = 0, bool full = false)
    {
        prepare();
        processor.uiHeight = storedHeight;
        set (parameterId::toggleSize, full ? 1.0f : 0.0f);
        open();
    }

    void open()
    {
        editor.reset (static_cast<TarvellineAudioProcessorEditor*> (processor.createEditor()));
        editor->setVisible (true); // as every host does once it has adopted the window
    }

    template <typename Control = juce::Component>
    Control& control (const juce::String& id)
    {
        return dynamic_cast<Control&> (*editor->findChildWithID (id));
    }

    double snapTo (const juce::String& id) { return control<SnapSlider> (id).snapTo; }
    juce::String textOf (const juce::String& id) { return control<juce::Button> (id).getButtonText(); }
    void turn (const juce::String& id, double value)
    {
        control<juce::Slider> (id).setValue (value, juce::sendNotificationSync);
    }
    void toggle (const juce::String& id, bool on)
    {
        control<juce::Button> (id).setToggleState (on, juce::sendNotificationSync);
    }
    void choose (const juce::String& id, int index)
    {
        control<juce::ComboBox> (id).setSelectedItemIndex (index, juce::sendNotificationSync);
    }

    /** What shows where no control does; all are gone then. */
    juce::Image panel (float scale = 1.0f)
    {
        for (auto* child : editor->getChildren())
            child->setVisible (false);

        return pictureOf (*editor, scale);
    }

    void tick (int times)
    {
        for (auto i = 0; i < times; ++i)
            editor->timerCallback();
    }

    /** What the dials' own timers do every 20 ms, without the wait. */
    void tickDials (int times = 1)
    {
        for (auto i = 0; i < times; ++i)
            for (const auto* dial : { "pitchDial", "timbreDial" })
                ((juce::Timer&) control<FollowDial> (dial)).timerCallback(); // a private base, hence this form of cast
    }

    /** The sound of a wheel stands somewhere, 0..1, and its dial shows it. */
    void followTo (const juce::String& side, double point)
    {
        (side == "pitch" ? processor.mainWheel : processor.timbWheel).point = point;
        tickDials();
    }

    /** The value read-out above a knob: the topmost control, the corner to drag aside. */
    juce::Label& readOut()
    {
        return dynamic_cast<juce::Label&> (*editor->getChildComponent (editor->getNumChildComponents() - 2));
    }

    std::unique_ptr<TarvellineAudioProcessorEditor> editor;
};

/** What is bound to what, in the names of the screen and of the host. */
struct Bound
{
    const char* control;
    const char* parameter;
};

inline constexpr Bound boundSliders[] = {
    { "mainWheelSlider", parameterId::mainWheelPar },
    { "pitchGravitySlider", parameterId::mainGravityPar },
    { "pitchInertiaSlider", parameterId::mainInertiaPar },
    { "pitchSmoothSlider", parameterId::mainSmoothPar },
    { "timbreWheelSlider", parameterId::timbWheelPar },
    { "timbreGravitySlider", parameterId::timbGravityPar },
    { "timbreInertiaSlider", parameterId::timbInertiaPar },
    { "timbreSmoothSlider", parameterId::timbSmoothPar },
    { "mixerSlider", parameterId::mixerPar },
};
inline constexpr Bound boundButtons[] = {
    { "pitchSnapButton", parameterId::mainSnap },
    { "timbreSnapButton", parameterId::timbSnap },
    { "sizeButton", parameterId::toggleSize },
    { "midiModeButton", parameterId::midiOptions },
};
inline constexpr Bound boundBoxes[] = {
    { "pitchRangeBox", parameterId::mainRange },
    { "timbreRangeBox", parameterId::timbRange },
};
} // namespace tarvelline::test
