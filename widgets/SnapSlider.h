// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A slider from 0 to 1 whose drags click to a grid around its centre, unless Shift is held. Message thread only. */
class SnapSlider : public juce::Slider
{
public:
    /** Truncated toward the centre, not rounded: a drag just short of a step stays on the inner one.
        Called for drags and the mouse wheel only; values set by the program are taken as they are. */
    double snapValue (double attemptedValue, DragMode) override;

    double snapTo = 0.0; // grid steps across the whole range, 0 = no grid
};
} // namespace tarvelline
