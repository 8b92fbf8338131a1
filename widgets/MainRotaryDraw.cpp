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
} // namespace

MainRotaryDraw::MainRotaryDraw()
    : puckImg (juce::ImageCache::getFromMemory (BinaryData::Puck_png, BinaryData::Puck_pngSize))
{
}

void MainRotaryDraw::drawRotarySlider (juce::Graphics& g, int x, int y, int width, int height,
                                       float sliderPosProportional, float rotaryStartAngle, float rotaryEndAngle,
                                       juce::Slider&)
{
    if (! puckImg.isValid() || g.isClipEmpty())
        return;

    const auto angle = rotaryAngle (sliderPosProportional, rotaryStartAngle, rotaryEndAngle);
    const auto centre = juce::Point<int> (x + width / 2, y + height / 2).toFloat();
    const auto puck = pointOnCircle (centre, static_cast<float> (juce::jmin (width, height)) * pathRadius, angle);
    const auto imageCentre = puckImg.getBounds().toFloat().getCentre();

    g.drawImageTransformed (puckImg, juce::AffineTransform::rotation (angle, imageCentre.x, imageCentre.y)
                                         .translated (-imageCentre)
                                         .scaled (static_cast<float> (width) / naturalSliderWidth)
                                         .translated (puck));
}
} // namespace tarvelline
