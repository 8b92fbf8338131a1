// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** The angle of a rotary slider's value in radians: 0 points straight up, angles grow clockwise. */
inline float rotaryAngle (float proportion, float startAngle, float endAngle)
{
    return startAngle + proportion * (endAngle - startAngle);
}

/** The point at `radius` from `centre` in the direction of `angle`. */
inline juce::Point<float> pointOnCircle (juce::Point<float> centre, float radius, float angle)
{
    return centre.getPointOnCircumference (radius, angle);
}

/** Fills a shape drawn around the origin, pointing up, as it points at `angle` around `centre`. */
inline void fillTurned (juce::Graphics& g, const juce::Path& shape, float angle, juce::Point<float> centre)
{
    g.fillPath (shape, juce::AffineTransform::rotation (angle).translated (centre));
}
} // namespace tarvelline
