// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A ring around the sibling that has the keyboard, round around a slider; nothing while none of them has it.

    Add it above the others. It covers its parent, lets the mouse through and paints nothing but the ring. Where the
    program's own window holds the keyboard, from which no Tab leads on, it passes it to its parent. Message thread only. */
class FocusRing : public juce::Component, private juce::FocusChangeListener
{
public:
    FocusRing();
    ~FocusRing() override;

    void paint (juce::Graphics&) override;
    void parentSizeChanged() override;

private:
    void globalFocusChanged (juce::Component* focused) override;
    void repaintRing();

    juce::Component::SafePointer<juce::Component> target;
};
} // namespace tarvelline
