// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/Axes.h"

#include "widgets/Fonts.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvelline::render
{
namespace
{
// Pixels.
constexpr float markLength = 8.0f, labelGap = 6.0f, labelHeight = 26.0f, labelWidth = 120.0f;
constexpr float sideNameDistance = 92.0f; // from the edge to the middle of an upright axis's name
constexpr float bottomNameDistance = 58.0f;

constexpr double minute = 60.0, hour = 3600.0; // seconds

juce::String twoDigits (int value) { return juce::String (value).paddedLeft ('0', 2); }

juce::String timeLabel (double time, double step, double whole)
{
    if (whole < minute)
        return juce::String (time, step < 0.1 ? 2 : step < 1.0 ? 1 : 0);

    const auto seconds = juce::roundToInt (time), minutes = seconds / 60;
    const auto start =
        whole < hour ? juce::String (minutes) : juce::String (minutes / 60) + ":" + twoDigits (minutes % 60);
    return start + ":" + twoDigits (seconds % 60);
}

void drawUprightAxis (juce::Graphics& g, juce::Rectangle<float> area, const std::vector<Tick>& ticks,
                      const juce::String& name, bool onLeft)
{
    const auto edge = onLeft ? area.getX() : area.getRight();
    const auto outwards = onLeft ? -1.0f : 1.0f;

    for (const auto& tick : ticks)
    {
        const auto y = area.getBottom() - static_cast<float> (tick.place) * area.getHeight();
        const auto labelEdge = edge + outwards * (markLength + labelGap);
        g.drawLine (edge, y, edge + outwards * markLength, y, 2.0f);
        g.drawText (tick.label,
                    juce::Rectangle<float> (onLeft ? labelEdge - labelWidth : labelEdge, y - labelHeight / 2.0f,
                                            labelWidth, labelHeight),
                    onLeft ? juce::Justification::centredRight : juce::Justification::centredLeft, false);
    }

    const juce::Point<float> middle (edge + outwards * sideNameDistance, area.getCentreY());
    const juce::Graphics::ScopedSaveState unturned (g);
    g.addTransform (
        juce::AffineTransform::rotation (outwards * juce::MathConstants<float>::halfPi, middle.x, middle.y));
    g.drawText (name, juce::Rectangle<float> (area.getHeight(), labelHeight).withCentre (middle),
                juce::Justification::centred, false);
}
} // namespace

std::vector<Tick> timeTicks (double seconds)
{
    constexpr double mostTicks = 10.0;
    constexpr std::array steps { 0.01, 0.02, 0.05, 0.1,   0.2,   0.5,   1.0,   2.0,   5.0,
                                 10.0, 30.0, 60.0, 120.0, 300.0, 600.0, 900.0, 1800.0 };
    const auto fitting = std::find_if (steps.begin(), steps.end(), [&] (double s) { return seconds / s <= mostTicks; });
    const auto step = fitting != steps.end() ? *fitting : std::ceil (seconds / mostTicks / hour) * hour;
    std::vector<Tick> ticks;

    for (int i = 0; i * step <= seconds; ++i)
        ticks.push_back ({ i * step / seconds, timeLabel (i * step, step, seconds) });

    return ticks;
}

juce::String timeName (double seconds)
{
    return seconds < minute ? "time (s)" : seconds < hour ? "time (min:s)" : "time (h:min:s)";
}

std::vector<Tick> hertzTicks (double lowHz, double highHz)
{
    std::vector<Tick> ticks;

    for (const auto hertz : { 50, 100, 200, 500, 1000, 2000, 5000, 10000, 20000 })
        if (hertz >= lowHz && hertz <= highHz)
            ticks.push_back ({ std::log (hertz / lowHz) / std::log (highHz / lowHz),
                               hertz < 1000 ? juce::String (hertz) : juce::String (hertz / 1000) + "k" });

    return ticks;
}

std::vector<Tick> evenTicks (int low, int high, int step, bool withSign)
{
    std::vector<Tick> ticks;

    for (int value = low; value <= high; ++value)
        if (value % step == 0)
            ticks.push_back ({ static_cast<double> (value - low) / (high - low),
                               (withSign && value > 0 ? "+" : "")
                                   + juce::String (value).replace ("-", juce::String::charToString (0x2212)) });

    return ticks;
}

void drawBottomAxis (juce::Graphics& g, juce::Rectangle<float> area, const std::vector<Tick>& ticks,
                     const juce::String& name)
{
    auto taken = -labelWidth; // the right edge of the last label

    for (const auto& tick : ticks)
    {
        const auto x = area.getX() + static_cast<float> (tick.place) * area.getWidth();
        const auto halfWidth = widthOf (g.getCurrentFont(), tick.label) / 2.0f;
        g.drawLine (x, area.getBottom(), x, area.getBottom() + markLength, 2.0f);

        if (x - halfWidth < taken + labelGap)
            continue;

        taken = x + halfWidth;
        g.drawText (tick.label,
                    juce::Rectangle<float> (x - labelWidth / 2.0f, area.getBottom() + markLength + labelGap / 2.0f,
                                            labelWidth, labelHeight),
                    juce::Justification::centred, false);
    }

    g.drawText (name,
                juce::Rectangle<float> (area.getWidth(), labelHeight)
                    .withCentre ({ area.getCentreX(), area.getBottom() + bottomNameDistance }),
                juce::Justification::centred, false);
}

void drawLeftAxis (juce::Graphics& g, juce::Rectangle<float> area, const std::vector<Tick>& ticks,
                   const juce::String& name)
{
    drawUprightAxis (g, area, ticks, name, true);
}

void drawRightAxis (juce::Graphics& g, juce::Rectangle<float> area, const std::vector<Tick>& ticks,
                    const juce::String& name)
{
    drawUprightAxis (g, area, ticks, name, false);
}
} // namespace tarvelline::render
