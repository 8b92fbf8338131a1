// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A slider from 0 to 1 whose drags click to a grid around its centre, unless Shift is held.

    A notch of the mouse wheel and an arrow key are a step: to the next line of the grid, or by `freeStep` where there is no grid
    or Shift is held; with both, by a tenth of it. Each step is one gesture, as a drag is. Message thread only. */
class SnapSlider : public juce::Slider
{
public:
    /** Truncated toward the centre, not rounded: a drag just short of a line stays on the inner one. A value on a line, as a
        float holds it, counts as on it, and where the slider stands already it may stand.
        Called for drags only; values set by the program are taken as they are. */
    double snapValue (double attemptedValue, DragMode) override;

    void mouseDrag (const juce::MouseEvent&) override;
    void mouseWheelMove (const juce::MouseEvent&, const juce::MouseWheelDetails&) override;
    bool keyPressed (const juce::KeyPress&) override;

    double snapTo = 0.0;    // grid steps across the whole range, 0 = no grid
    double freeStep = 0.01; // of the whole range

private:
    bool isSnapping (juce::ModifierKeys) const;
    void step (int steps, juce::ModifierKeys);
    int notchesOf (const juce::MouseWheelDetails&);

    float wheelTravel = 0.0f; // short of a notch
};
} // namespace tarvelline
