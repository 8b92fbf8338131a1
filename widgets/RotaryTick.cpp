// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RotaryTick.h"

#include "widgets/RotaryGeometry.h"

namespace tarvelline
{
namespace
{
// Of the smaller side
constexpr float barWidth = 0.05f;
constexpr float barInnerRadius = 0.2f;
constexpr float barLength = 0.25f;
} // namespace

void RotaryTick::drawRotarySlider (juce::Graphics& g, int x, int y, int width, int height, float sliderPosProportional,
                                   float rotaryStartAngle, float rotaryEndAngle, juce::Slider&)
{
    const auto size = static_cast<float> (juce::jmin (width, height));
    const juce::Point<float> centre (static_cast<float> (x + width) * 0.5f, static_cast<float> (y + height) * 0.5f);

    juce::Path bar;
    bar.addRectangle (size * barWidth * -0.5f, size * -(barInnerRadius + barLength), size * barWidth, size * barLength);

    g.setColour (findColour (juce::Slider::thumbColourId));
    fillTurned (g, bar, rotaryAngle (sliderPosProportional, rotaryStartAngle, rotaryEndAngle), centre);
}
} // namespace tarvelline
