// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace tarvelline
{
/** A toggle button whose two states have names: a screen reader says the name that shows, not "on" or "off". Message thread
    only. */
class ModeButton : public juce::TextButton
{
public:
    using juce::TextButton::TextButton;

    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;
};
} // namespace tarvelline
