// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <memory>

namespace tarvelline
{
/** What a screen reader says of a component, and does with it: its title, a value, and what else is told here; unless told,
    a component that shows something and takes nothing. Message thread only.
    @param value    called while the component lives
    @param stateOf  adds the component's own state to what the framework knows of it; the same */
std::unique_ptr<juce::AccessibilityHandler>
speakingHandler (juce::Component&, std::function<juce::String()> value,
                 juce::AccessibilityRole = juce::AccessibilityRole::staticText, juce::AccessibilityActions = {},
                 std::function<juce::AccessibleState (juce::AccessibleState)> stateOf = nullptr);
} // namespace tarvelline
