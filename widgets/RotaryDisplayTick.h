// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Look of the scale behind a wheel: a ring of ticks, five a step, and the steps' numbers counted from the centre.

    Give it to SnapSliders only, with `snapTo` (the steps) above 0; the slider's value is not shown. Ticks are drawn in
    Slider::thumbColourId, numbers in Slider::textBoxHighlightColourId. Message thread only. */
class RotaryDisplayTick : public juce::LookAndFeel_V4
{
public:
    void drawRotarySlider (juce::Graphics&, int x, int y, int width, int height, float sliderPosProportional,
                           float rotaryStartAngle, float rotaryEndAngle, juce::Slider&) override;

private:
    /** Where a scale lies. */
    struct Ring
    {
        juce::Point<float> centre;
        float size;                 // the smaller side, pixels
        float startAngle, endAngle; // radians
        float stepAngle;            // between two numbers
    };

    void drawTicks (juce::Graphics&, const Ring&) const;
    void drawNumbers (juce::Graphics&, const Ring&, float steps, float boxSize) const;
};
} // namespace tarvelline
