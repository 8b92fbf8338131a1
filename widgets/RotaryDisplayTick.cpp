// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/RotaryDisplayTick.h"

#include "widgets/RotaryGeometry.h"
#include "widgets/SnapSlider.h"

namespace tarvelline
{
namespace
{
constexpr int ticksPerStep = 5;
constexpr float angleTolerance = 0.001f; // radians: the last tick is drawn although the sum of steps is not exact

// Of the smaller side
constexpr float tickWidth = 0.005f;
constexpr float smallTickInner = 0.42f, smallTickOuter = 0.465f; // reaches a little further out than the big one
constexpr float bigTickInner = 0.395f, bigTickOuter = 0.46f;
constexpr float numberRadius = 0.46f;
constexpr float numberHeight = 0.0425f;
constexpr float signShift = 0.01f; // a plus sign moves its number left, so that the digits stay on the tick
constexpr float numberBox = 0.6f;  // of the width

constexpr float crowdedSteps = 24.0f; // above this only every other number has room

juce::Path tick (float size, float inner, float outer)
{
    juce::Path path;
    path.addRectangle (size * tickWidth * -0.5f, size * -outer, size * tickWidth, size * (outer - inner));
    return path;
}
} // namespace

void RotaryDisplayTick::drawRotarySlider (juce::Graphics& g, int x, int y, int width, int height, float,
                                          float rotaryStartAngle, float rotaryEndAngle, juce::Slider& slider)
{
    const auto steps = static_cast<float> (static_cast<SnapSlider&> (slider).snapTo);
    const Ring ring { { static_cast<float> (x + width) * 0.5f, static_cast<float> (y + height) * 0.5f },
                      static_cast<float> (juce::jmin (width, height)),
                      rotaryStartAngle,
                      rotaryEndAngle,
                      (rotaryEndAngle - rotaryStartAngle) / steps };

    drawTicks (g, ring);
    drawNumbers (g, ring, steps, static_cast<float> (width) * numberBox);
}

void RotaryDisplayTick::drawTicks (juce::Graphics& g, const Ring& ring) const
{
    const auto smallTick = tick (ring.size, smallTickInner, smallTickOuter);
    const auto bigTick = tick (ring.size, bigTickInner, bigTickOuter);
    auto count = 0;

    g.setColour (findColour (juce::Slider::thumbColourId));

    for (auto angle = ring.startAngle; angle <= ring.endAngle + angleTolerance; angle += ring.stepAngle / ticksPerStep)
        fillTurned (g, count++ % ticksPerStep == 0 ? bigTick : smallTick, angle, ring.centre);
}

void RotaryDisplayTick::drawNumbers (juce::Graphics& g, const Ring& ring, float steps, float boxSize) const
{
    const auto stride = steps > crowdedSteps ? 2 : 1;
    auto number = steps * -0.5f;
    auto count = 0;

    g.setFont (ring.size * numberHeight);
    g.setColour (findColour (juce::Slider::textBoxHighlightColourId));

    for (auto angle = ring.startAngle; angle <= ring.endAngle + angleTolerance; angle += ring.stepAngle, number += 1.0f)
    {
        if (count++ % stride != 0)
            continue;

        const auto anchor = pointOnCircle (ring.centre, ring.size * numberRadius, angle).translated (0.0f, 0.5f);
        const auto box = juce::Rectangle<float> (boxSize, boxSize).withCentre (anchor);
        const auto text = juce::String (number);

        if (number >= 1.0f) // from 1 on: a half step above the centre stays without a sign
            g.drawText ("+" + text, box.translated (-ring.size * signShift, 0.0f), juce::Justification::centred);
        else
            g.drawText (text, box, juce::Justification::centred);
    }
}
} // namespace tarvelline
