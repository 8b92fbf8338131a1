// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/TarvellineAudioProcessorEditor.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace tarvelline::test
{
/** A prepared processor with its window open, off the screen. What is to be set before it opens, `before` sets. */
struct EditorRig : ProcessorRig
{
    explicit EditorRig (const std::function<void (EditorRig&)>& before = {})
    {
        prepare();

        if (before)
            before (*this);

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
        auto* found = dynamic_cast<Control*> (editor->findChildWithID (id));

        if (found == nullptr)
            throw std::runtime_error ("no such control: " + id.toStdString());

        return *found;
    }

    juce::Slider& slider (const juce::String& id) { return control<juce::Slider> (id); }
    double snapTo (const juce::String& id) { return control<SnapSlider> (id).snapTo; }
    juce::String textOf (const juce::String& id) { return control<juce::Button> (id).getButtonText(); }
    void toggle (const juce::String& id, bool on)
    {
        control<juce::Button> (id).setToggleState (on, juce::sendNotificationSync);
    }
    void choose (const juce::String& id, int index)
    {
        control<juce::ComboBox> (id).setSelectedItemIndex (index, juce::sendNotificationSync);
    }

    /** The value read-out: the one child without an ID. */
    juce::Label& readOut()
    {
        for (auto* child : editor->getChildren())
            if (auto* label = dynamic_cast<juce::Label*> (child))
                return *label;

        throw std::runtime_error ("no read-out");
    }

    std::unique_ptr<TarvellineAudioProcessorEditor> editor;
};

/** Hears a component being asked to repaint, which leaves no trace as long as no window is on the screen. The component
    owns it. */
class RepaintListener : public juce::CachedComponentImage
{
public:
    static void listenTo (juce::Component& component, std::function<void (juce::Rectangle<int>)> heard)
    {
        auto* listener = new RepaintListener (component);
        component.setCachedComponentImage (listener); // which repaints it
        listener->heard = std::move (heard);
    }

    void paint (juce::Graphics&) override {}
    bool invalidateAll() override { return invalidate (component.getLocalBounds()); }
    bool invalidate (const juce::Rectangle<int>& area) override
    {
        if (heard)
            heard (area);

        return true;
    }
    void releaseResources() override {}

private:
    explicit RepaintListener (juce::Component& c) : component (c) {}

    juce::Component& component;
    std::function<void (juce::Rectangle<int>)> heard;
};

/** What is bound to what, the names as the host and the screen know them. */
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
