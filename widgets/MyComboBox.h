// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

namespace tarvelline
{
/** A combo box without a body: only its text shows, on the panel. A click leaves the keyboard where it is, and a screen reader
    calls it by its title; the framework's own goes by what is chosen in it alone. Message thread only. */
class MyComboBox : public juce::ComboBox
{
public:
    void paint (juce::Graphics&) override {}
    void childrenChanged() override;
    void showPopup() override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

private:
    void close (int chosen);
};
} // namespace tarvelline
