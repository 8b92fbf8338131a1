// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/MyComboBox.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <memory>

namespace tarvelline
{
/** What a screen reader says of a component that shows something and takes nothing.
    @param value  called on the message thread, while the component lives */
std::unique_ptr<juce::AccessibilityHandler> speakingHandler (juce::Component&, std::function<juce::String()> value);

/** A toggle button whose two states have names: a screen reader says the name that shows, not "on" or "off". */
class ModeButton : public juce::TextButton
{
public:
    using juce::TextButton::TextButton;

    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;
};

/** A box that a screen reader calls by its title; the framework's own goes by what is chosen in it alone. */
class TitledBox : public MyComboBox
{
public:
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;
};
} // namespace tarvelline
