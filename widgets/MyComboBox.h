// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A combo box without a body: only its text shows, on the panel. */
class MyComboBox : public juce::ComboBox
{
public:
    void paint (juce::Graphics&) override {}
};
} // namespace tarvelline
