// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/PixelMeters.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvelline::test
{
namespace
{
template <typename Visit>
void forEachPixel (const juce::Image& image, juce::Rectangle<int> area, Visit&& visit)
{
    const juce::Image::BitmapData pixels (image, juce::Image::BitmapData::readOnly);
    area = area.getIntersection (image.getBounds());

    for (auto y = area.getY(); y < area.getBottom(); ++y)
        for (auto x = area.getX(); x < area.getRight(); ++x)
            visit (juce::Point<int> (x, y), pixels.getPixelColour (x, y));
}
} // namespace

bool isInk (juce::Colour colour) { return colour.getAlpha() >= 128; }

bool isOrange (juce::Colour colour)
{
    return isInk (colour) && colour.getRed() > 200 && colour.getGreen() > 80 && colour.getGreen() < 170
           && colour.getBlue() < 90;
}

juce::Image pictureOf (juce::Component& component, float scale)
{
    return component.createComponentSnapshot (component.getLocalBounds(), true, scale);
}

std::vector<float> litRuns (const juce::Image& image, juce::Point<float> centre, float radius, const PixelTest& isLit)
{
    constexpr auto from = juce::MathConstants<float>::pi, length = 2.0f * from, samplesPerPixel = 4.0f;
    const auto samples = static_cast<int> (length * radius * samplesPerPixel);
    const auto step = length / static_cast<float> (samples);
    std::vector<float> runs;
    auto start = -1;

    for (auto i = 0; i <= samples + 1; ++i)
    {
        const auto point = centre.getPointOnCircumference (radius, from + static_cast<float> (i) * step);
        const auto lit = i <= samples
                         && isLit (image.getPixelAt (static_cast<int> (std::floor (point.x)),
                                                     static_cast<int> (std::floor (point.y))));

        if (lit && start < 0)
            start = i;

        if (! lit && start >= 0)
        {
            runs.push_back (from + static_cast<float> (start + i - 1) * 0.5f * step);
            start = -1;
        }
    }

    return runs;
}

juce::Point<float> centreOf (const juce::Image& image, juce::Rectangle<int> area, const PixelTest& passes)
{
    juce::Point<double> sum;
    auto count = 0.0;

    forEachPixel (image, area,
                  [&] (juce::Point<int> at, juce::Colour colour)
                  {
                      if (passes (colour))
                      {
                          sum += at.toDouble() + juce::Point<double> (0.5, 0.5);
                          count += 1.0;
                      }
                  });

    constexpr auto none = std::numeric_limits<double>::quiet_NaN();
    return (count > 0.0 ? sum / count : juce::Point<double> (none, none)).toFloat();
}

juce::Rectangle<int> boundsOf (const juce::Image& image, const PixelTest& passes)
{
    juce::Rectangle<int> bounds;

    forEachPixel (image, image.getBounds(),
                  [&] (juce::Point<int> at, juce::Colour colour)
                  {
                      if (passes (colour))
                          bounds = bounds.getUnion ({ at.x, at.y, 1, 1 });
                  });

    return bounds;
}

int differingPixels (const juce::Image& first, const juce::Image& second, int tolerance)
{
    auto count = 0;

    forEachPixel (first, second.getBounds(),
                  [&] (juce::Point<int> at, juce::Colour a)
                  {
                      const auto b = second.getPixelAt (at.x, at.y);
                      count +=
                          std::max ({ std::abs (a.getRed() - b.getRed()), std::abs (a.getGreen() - b.getGreen()),
                                      std::abs (a.getBlue() - b.getBlue()), std::abs (a.getAlpha() - b.getAlpha()) })
                                  > tolerance
                              ? 1
                              : 0;
                  });

    return count;
}

double luminance (juce::Colour colour)
{
    const auto linear = [] (float channel)
    {
        const auto value = static_cast<double> (channel);
        return value <= 0.04045 ? value / 12.92 : std::pow ((value + 0.055) / 1.055, 2.4);
    };

    return 0.2126 * linear (colour.getFloatRed()) + 0.7152 * linear (colour.getFloatGreen())
           + 0.0722 * linear (colour.getFloatBlue());
}

double contrastRatio (juce::Colour first, juce::Colour second)
{
    const auto a = luminance (first) + 0.05, b = luminance (second) + 0.05;
    return std::max (a, b) / std::min (a, b);
}
} // namespace tarvelline::test
