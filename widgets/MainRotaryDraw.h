// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "widgets/ScalablePicture.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Look of the big wheels: a puck that travels round a circle and turns with the value. Nothing else is drawn, so what
    lies beneath the slider shows. Draws nothing if the picture cannot be decoded. Message thread only. */
class MainRotaryDraw : public juce::LookAndFeel_V4
{
public:
    MainRotaryDraw();

    void drawRotarySlider (juce::Graphics&, int x, int y, int width, int height, float sliderPosProportional,
                           float rotaryStartAngle, float rotaryEndAngle, juce::Slider&) override;

    /** What the puck covers of a wheel, in whole pixels of the wheel. */
    juce::Rectangle<int> puckArea (juce::Slider& wheel) const;

private:
    juce::AffineTransform puckTransform (juce::Rectangle<int> wheel, float angle) const;

    ScalablePicture puck;
};
} // namespace tarvelline
