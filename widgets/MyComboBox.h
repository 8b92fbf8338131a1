// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A combo box without a body: only its text shows, on the panel. A click leaves the keyboard where it is. */
class MyComboBox : public juce::ComboBox
{
public:
    void paint (juce::Graphics&) override {}

    /** The text is a component, made anew with every look, that would take the keyboard by itself. */
    void childrenChanged() override
    {
        for (auto* child : getChildren())
            child->setMouseClickGrabsKeyboardFocus (false);
    }
};
} // namespace tarvelline
