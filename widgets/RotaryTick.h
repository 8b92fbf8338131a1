// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Look of the small knobs: one pointer bar at the value's angle, in Slider::thumbColourId. Message thread only. */
class RotaryTick : public juce::LookAndFeel_V4
{
public:
    void drawRotarySlider (juce::Graphics&, int x, int y, int width, int height, float sliderPosProportional,
                           float rotaryStartAngle, float rotaryEndAngle, juce::Slider&) override;
};
} // namespace tarvelline
