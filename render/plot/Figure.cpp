// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/Figure.h"

#include "render/plot/Axes.h"
#include "render/plot/Caption.h"
#include "render/plot/Palette.h"
#include "render/plot/Spectrogram.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tarvelline::render
{
namespace
{
// Pixels; the whole figure, and within it both spectrograms.
constexpr int figureWidth = 1600, figureHeight = 1200;
constexpr int left = 130, top = 66, panelWidth = 1300, panelHeight = 460, panelDistance = 590;
constexpr float textHeight = 22.0f, titleHeight = 26.0f;

constexpr double lowestHz = 40.0, highestHz = 16000.0;
constexpr int shownDecibels = 80; // from the loudest down
constexpr int quietestTop = -60;  // dB: the scale's upper end at least, so that silence is dark
const juce::Colour ink (0xff222222), curveColour (0xffff8c1a);

struct SemitoneAxis
{
    int low = 0, high = 0;

    int step() const { return high - low <= 12 ? 1 : high - low <= 24 ? 2 : high - low <= 48 ? 6 : 12; }
};

SemitoneAxis axisFor (const ShiftTrace& shifts)
{
    ShiftTrace::Reach all { 0.0f, 0.0f };

    for (const auto& point : shifts.getPoints())
        for (const auto& reach : point)
            all.include (reach);

    return { static_cast<int> (std::floor (all.low)) - 1, static_cast<int> (std::ceil (all.high)) + 1 };
}

juce::Image spectrogramImage (const Spectrogram& spectrogram, int loudest)
{
    const auto& grid = spectrogram.grid;
    juce::Image image (juce::Image::RGB, grid.columns, grid.rows, false);
    juce::Image::BitmapData pixels (image, juce::Image::BitmapData::writeOnly);

    for (int column = 0; column < grid.columns; ++column)
        for (int row = 0; row < grid.rows; ++row)
            pixels.setPixelColour (
                column, grid.rows - 1 - row,
                paletteColour (1.0f
                               + (spectrogram.levelAt (column, row) - static_cast<float> (loudest)) / shownDecibels));

    return image;
}

void drawPanel (juce::Graphics& g, juce::Rectangle<float> area, const Spectrogram& spectrogram, int loudest,
                const juce::String& before, const juce::String& name, const juce::String& after)
{
    const auto& grid = spectrogram.grid;
    g.drawImageAt (spectrogramImage (spectrogram, loudest), juce::roundToInt (area.getX()),
                   juce::roundToInt (area.getY()));
    g.setColour (ink);
    g.drawRect (area.expanded (2.0f), 2.0f);
    g.setFont (titleHeight);
    drawCaption (g, area.withHeight (titleHeight + 8.0f).translated (0.0f, -titleHeight - 16.0f), before, name, after);
    g.setFont (textHeight);
    drawLeftAxis (g, area, hertzTicks (grid.lowHz, grid.highHz), "frequency (Hz)");
    drawBottomAxis (g, area, timeTicks (grid.seconds), timeName (grid.seconds));
}

void drawLevelScale (juce::Graphics& g, juce::Rectangle<float> beside, int loudest)
{
    const auto bar = beside.withX (beside.getRight() + 30.0f).withWidth (24.0f);

    for (int row = 0; row < juce::roundToInt (bar.getHeight()); ++row)
    {
        const auto y = static_cast<float> (row);
        g.setColour (paletteColour (1.0f - y / bar.getHeight()));
        g.fillRect (bar.getX(), bar.getY() + y, bar.getWidth(), 1.0f);
    }

    g.setColour (ink);
    g.drawRect (bar.expanded (2.0f), 2.0f);
    drawRightAxis (g, bar, evenTicks (loudest - shownDecibels, loudest, 10, false), "level (dB)");
}

/** @param late  samples by which what is heard comes after the shifts,  @param length  samples that the area shows */
juce::Path curveOf (const ShiftTrace& shifts, std::size_t which, const SemitoneAxis& axis, juce::Rectangle<float> area,
                    int late, double length)
{
    const auto yOf = [&] (float shift)
    {
        return area.getBottom()
               - area.getHeight() * (shift - static_cast<float> (axis.low)) / static_cast<float> (axis.high - axis.low);
    };

    juce::Path curve;
    bool drawing = false;

    for (std::size_t i = 0; i < shifts.getPoints().size(); ++i)
    {
        const auto& reach = shifts.getPoints()[i][which];
        const auto sample = static_cast<double> ((static_cast<std::int64_t> (i) + 1) * shifts.getInterval() - late);
        const auto x = area.getX() + area.getWidth() * static_cast<float> (sample / length);

        if (std::isnan (reach.low))
            drawing = false;
        else if (! std::exchange (drawing, true))
            curve.startNewSubPath (x, yOf (reach.low));
        else
            curve.lineTo (x, yOf (reach.low));

        if (reach.high > reach.low)
            curve.lineTo (x, yOf (reach.high));
    }

    return curve;
}

void drawShifts (juce::Graphics& g, juce::Rectangle<float> area, const ShiftTrace& shifts, int late, double length)
{
    const auto axis = axisFor (shifts);
    const juce::PathStrokeType halo (7.0f, juce::PathStrokeType::curved), line (3.5f, juce::PathStrokeType::curved);

    {
        const juce::Graphics::ScopedSaveState unclipped (g);
        g.reduceClipRegion (area.toNearestInt());

        for (std::size_t i = 0; i < voiceCount; ++i)
        {
            const auto curve = curveOf (shifts, i, axis, area, late, length);
            g.setColour (juce::Colours::black.withAlpha (0.6f));
            g.strokePath (curve, halo);
            g.setColour (curveColour);
            g.strokePath (curve, line);
        }
    }

    g.setColour (curveColour.darker (0.25f));
    drawRightAxis (g, area.expanded (2.0f, 0.0f), evenTicks (axis.low, axis.high, axis.step(), true),
                   "shift (semitones)");
}
} // namespace

juce::Image drawFigure (const Source& before, const Source& after, const juce::String& beforeName,
                        const juce::String& afterName, const ShiftTrace& shifts, int latency)
{
    const auto samples = static_cast<double> (after.length);
    const SpectrogramGrid grid { samples / after.rate, lowestHz, std::min (highestHz, after.rate / 2.0), panelWidth,
                                 panelHeight };
    const Spectrogram spectrumBefore (before, grid), spectrumAfter (after, grid);
    const auto highest = std::max (spectrumBefore.loudest(), spectrumAfter.loudest());
    const auto loudest = std::max (quietestTop, static_cast<int> (std::ceil (highest / 10.0f)) * 10);

    juce::Image image (juce::Image::RGB, figureWidth, figureHeight, true);
    juce::Graphics g (image);
    g.fillAll (juce::Colours::white);

    const juce::Rectangle<float> upper (left, top, panelWidth, panelHeight);
    const auto lower = upper.translated (0.0f, panelDistance);
    drawPanel (g, upper, spectrumBefore, loudest, "Input: ", beforeName, {});
    drawLevelScale (g, upper, loudest);
    drawPanel (g, lower, spectrumAfter, loudest, "Output: ", afterName, ", and the shift that sounds");
    drawShifts (g, lower, shifts, latency, samples);
    return image;
}
} // namespace tarvelline::render
