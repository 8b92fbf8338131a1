// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/MainRotaryDraw.h"

#include "BinaryData.h"
#include "widgets/RotaryGeometry.h"

namespace tarvelline
{
namespace
{
constexpr float pathRadius = 0.416f;         // of the smaller side
constexpr float naturalSliderWidth = 356.0f; // pixels: the width at which the picture keeps its own size

float scaleIn (juce::Rectangle<int> wheel) { return static_cast<float> (wheel.getWidth()) / naturalSliderWidth; }
} // namespace

MainRotaryDraw::MainRotaryDraw()
    : puck (BinaryData::Puck_png, BinaryData::Puck_pngSize, BinaryData::Puck2x_png, BinaryData::Puck2x_pngSize)
{
}

void MainRotaryDraw::drawRotarySlider (juce::Graphics& g, int x, int y, int width, int height,
                                       float sliderPosProportional, float rotaryStartAngle, float rotaryEndAngle,
                                       juce::Slider&)
{
    const juce::Rectangle<int> wheel (x, y, width, height);
    const auto& picture = puck.at (scaleIn (wheel) * g.getInternalContext().getPhysicalPixelScaleFactor());

    if (! picture.isValid() || g.isClipEmpty())
        return;

    const auto angle = rotaryAngle (sliderPosProportional, rotaryStartAngle, rotaryEndAngle);
    g.drawImageTransformed (picture, puck.toNatural (picture).followedBy (puckTransform (wheel, angle)));
}

juce::Rectangle<int> MainRotaryDraw::puckArea (juce::Slider& wheel) const
{
    const auto sweep = wheel.getRotaryParameters();
    const auto angle = rotaryAngle (static_cast<float> (wheel.valueToProportionOfLength (wheel.getValue())),
                                    sweep.startAngleRadians, sweep.endAngleRadians);

    // The picture's ink lies within the ellipse that fills it: its corners are transparent. So the circle around that
    // ellipse holds the puck at every angle, in as little as half the pixels of the turned picture's rectangle.
    const auto picture = puck.getBounds();
    const auto diameter = juce::jmax (picture.getWidth(), picture.getHeight()) * scaleIn (wheel.getLocalBounds());

    return juce::Rectangle<float> (diameter, diameter)
        .withCentre (picture.getCentre().transformedBy (puckTransform (wheel.getLocalBounds(), angle)))
        .getSmallestIntegerContainer()
        .expanded (1); // the resampling blends over the edge
}

juce::AffineTransform MainRotaryDraw::puckTransform (juce::Rectangle<int> wheel, float angle) const
{
    const auto centre = juce::Point<int> (wheel.getX() + wheel.getWidth() / 2, wheel.getY() + wheel.getHeight() / 2);
    const auto radius = static_cast<float> (juce::jmin (wheel.getWidth(), wheel.getHeight())) * pathRadius;
    const auto imageCentre = puck.getBounds().getCentre();

    return juce::AffineTransform::rotation (angle, imageCentre.x, imageCentre.y)
        .translated (-imageCentre)
        .scaled (scaleIn (wheel))
        .translated (pointOnCircle (centre.toFloat(), radius, angle));
}
} // namespace tarvelline
