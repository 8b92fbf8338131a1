// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/CompareChart.h"

#include "render/plot/Axes.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>

namespace tarvelline::bench
{
namespace
{
// Pixels
constexpr int width = 1600, height = 1160, columns = 2;
constexpr float left = 150.0f, top = 40.0f, panelWidth = 600.0f, panelHeight = 420.0f;
constexpr float columnDistance = 780.0f, rowDistance = 560.0f, textHeight = 20.0f, dot = 9.0f;
constexpr float legendLeft = 30.0f, legendTop = 24.0f, legendLine = 30.0f; // of the first name, from the corner; next
constexpr double narrowestTick = 0.08;                                     // of the axis, between two labels
constexpr juce::uint32 curveColours[] = { 0xff1f6fb4, 0xffc8501e };

struct Range
{
    double low, high;
    bool isLogarithmic;

    double place (double value) const
    {
        return isLogarithmic ? std::log (value / low) / std::log (high / low) : (value - low) / (high - low);
    }
};

/** A round number of steps from 0 to above the highest value. */
std::vector<render::Tick> costTicks (double highest, double& end)
{
    auto step = std::pow (10.0, std::floor (std::log10 (highest)));

    while (highest / step < 3.0)
        step /= 2.0;

    std::vector<render::Tick> ticks;
    end = std::ceil (highest / step) * step;

    for (int i = 0; i * step <= end * 1.0001; ++i)
        ticks.push_back (
            { i * step / end, juce::String (i * step, 3).trimCharactersAtEnd ("0").trimCharactersAtEnd (".") });

    return ticks;
}

void drawCurve (juce::Graphics& g, juce::Rectangle<float> area, const Panel& panel, const Range& range,
                const std::vector<double>& y, double end)
{
    juce::Path path;

    for (std::size_t i = 0; i < y.size(); ++i)
    {
        const juce::Point<float> point (area.getX() + static_cast<float> (range.place (panel.x[i])) * area.getWidth(),
                                        area.getBottom() - static_cast<float> (y[i] / end) * area.getHeight());
        g.fillEllipse (juce::Rectangle<float> (dot, dot).withCentre (point));
        i == 0 ? path.startNewSubPath (point) : path.lineTo (point);
    }

    g.strokePath (path, juce::PathStrokeType (2.5f));
}

void drawPanel (juce::Graphics& g, juce::Rectangle<float> area, const Panel& panel, const juce::String& yName)
{
    const Range range { panel.x.front(), panel.x.back(), panel.isLogarithmic };
    auto highest = 0.0, end = 1.0;

    for (const auto& curve : panel.curves)
        highest = std::max (highest, *std::max_element (curve.y.begin(), curve.y.end()));

    const auto upright = costTicks (highest, end);
    std::vector<render::Tick> level;

    for (const auto x : panel.x)
        if (level.empty() || range.place (x) - level.back().place >= narrowestTick)
            level.push_back ({ range.place (x), juce::String (x, 1).replace (".0", "") });

    g.setColour (juce::Colour (0xffdddddd));

    for (const auto& tick : upright)
        g.drawHorizontalLine (juce::roundToInt (area.getBottom() - static_cast<float> (tick.place) * area.getHeight()),
                              area.getX(), area.getRight());

    g.setColour (juce::Colour (0xff222222));
    g.drawRect (area, 2.0f);
    render::drawBottomAxis (g, area, level, panel.name);
    render::drawLeftAxis (g, area, upright, yName);

    for (std::size_t i = 0; i < panel.curves.size(); ++i)
    {
        g.setColour (juce::Colour (curveColours[i]));
        drawCurve (g, area, panel, range, panel.curves[i].y, end);

        if (panel.curves.size() > 1)
            g.drawSingleLineText (
                panel.curves[i].name, juce::roundToInt (area.getX() + legendLeft),
                juce::roundToInt (area.getBottom() - legendTop - static_cast<float> (i) * legendLine));
    }
}
} // namespace

void saveChart (const std::vector<Panel>& panels, const juce::String& yName, const juce::File& file)
{
    juce::Image image (juce::Image::RGB, width, height, true);

    {
        juce::Graphics g (image);
        g.fillAll (juce::Colours::white);
        g.setFont (textHeight);

        for (std::size_t i = 0; i < panels.size(); ++i)
        {
            const auto column = static_cast<float> (i % columns), row = static_cast<float> (i / columns);
            drawPanel (g, { left + column * columnDistance, top + row * rowDistance, panelWidth, panelHeight },
                       panels[i], yName);
        }
    }

    file.deleteFile();
    juce::FileOutputStream stream (file);
    juce::PNGImageFormat().writeImageToStream (image, stream);
}
} // namespace tarvelline::bench
