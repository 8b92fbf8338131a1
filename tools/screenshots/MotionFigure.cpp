// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/screenshots/MotionFigure.h"

#include "processor/WheelModel.h"
#include "render/plot/Axes.h"

#include <vector>

namespace tarvelline
{
namespace
{
constexpr double sampleRate = 44100.0, seconds = 3.0;
constexpr double span = 12.0;       // semitones from end to end
constexpr double wheelValue = 1.0;  // six semitones above the centre, where the wheel stood
constexpr int highestSemitone = 12; // of the axis: a swing reaches twice as far as the wheel

// Pixels
constexpr int width = 1960, height = 640;
constexpr float left = 120.0f, top = 60.0f, panelWidth = 500.0f, panelHeight = 480.0f, distance = 650.0f;
constexpr float textHeight = 22.0f, keyLine = 26.0f, keyWidth = 40.0f;

struct Setting
{
    double gravity, inertia, smooth;
};

struct Panel
{
    const char* title;
    double Setting::*shown; // the one that differs
    std::vector<Setting> settings;
};

const std::vector<Panel> panels {
    { "GRAVITY (INERTIA 0.50, SMOOTH 0)",
      &Setting::gravity,
      { { 0.25, 0.5, 0.0 }, { 0.4, 0.5, 0.0 }, { 0.5, 0.5, 0.0 }, { 0.8, 0.5, 0.0 } } },
    { "INERTIA (GRAVITY 0.40, SMOOTH 0)",
      &Setting::inertia,
      { { 0.4, 0.0, 0.0 }, { 0.4, 0.25, 0.0 }, { 0.4, 0.5, 0.0 }, { 0.4, 1.0, 0.0 } } },
    { "SMOOTH (GRAVITY 0.50, INERTIA 0.50)",
      &Setting::smooth,
      { { 0.5, 0.5, 0.0 }, { 0.5, 0.5, 0.3 }, { 0.5, 0.5, 0.45 }, { 0.5, 0.5, 0.6 } } },
};

/** Dark to light, so that the order shows in grey print too. */
const juce::Colour colours[] { juce::Colour (0xff16324f), juce::Colour (0xff1f6fb4), juce::Colour (0xfff97e04),
                               juce::Colour (0xffe8b04a) };

/** The shift in semitones after each sample. */
std::vector<float> follow (const Setting& setting)
{
    WheelRecord wheel;
    wheel.timeScale = 44100.0 / sampleRate;
    wheel.target = 0.5;
    setRange (wheel, span);
    reanchor (wheel);
    setGravity (wheel, setting.gravity);
    setInertia (wheel, setting.inertia);
    setSmooth (wheel, setting.smooth);
    std::vector<float> semitones (static_cast<std::size_t> (seconds * sampleRate));
    moveWheel (wheel, wheelValue, semitones.data(), static_cast<int> (semitones.size()));
    return semitones;
}

void drawCurve (juce::Graphics& g, juce::Rectangle<float> area, const std::vector<float>& semitones)
{
    juce::Path curve;

    for (int x = 0; x <= static_cast<int> (area.getWidth()); ++x)
    {
        const auto place = static_cast<float> (x) / area.getWidth();
        const auto sample = static_cast<std::size_t> (place * static_cast<float> (semitones.size() - 1));
        const juce::Point<float> point (area.getX() + static_cast<float> (x),
                                        area.getBottom() - semitones[sample] / highestSemitone * area.getHeight());
        x == 0 ? curve.startNewSubPath (point) : curve.lineTo (point);
    }

    g.strokePath (curve, juce::PathStrokeType (3.0f));
}

void drawPanel (juce::Graphics& g, juce::Rectangle<float> area, const Panel& panel)
{
    const auto ink = juce::Colour (0xff222222), grid = juce::Colour (0xffdddddd);
    const auto semitones = render::evenTicks (0, highestSemitone, 2, false);
    g.setColour (grid);

    for (const auto& tick : semitones)
        g.drawHorizontalLine (juce::roundToInt (area.getBottom() - static_cast<float> (tick.place) * area.getHeight()),
                              area.getX(), area.getRight());

    g.setColour (ink);
    g.drawText (panel.title, area.withHeight (textHeight).translated (0.0f, -1.6f * textHeight),
                juce::Justification::centred);
    g.drawRect (area, 2.0f);
    render::drawBottomAxis (g, area, render::evenTicks (0, static_cast<int> (seconds), 1, false), "seconds");
    render::drawLeftAxis (g, area, semitones, "semitones");
    auto key = area.reduced (16.0f, 10.0f).withHeight (keyLine);

    for (std::size_t i = 0; i < panel.settings.size(); ++i, key.translate (0.0f, keyLine))
    {
        const auto& setting = panel.settings[i];
        g.setColour (colours[i]);
        drawCurve (g, area, follow (setting));
        g.fillRect (key.withTrimmedLeft (key.getWidth() - keyWidth).withSizeKeepingCentre (keyWidth, 4.0f));
        g.setColour (ink);
        g.drawText (juce::String (setting.*panel.shown, 2), key.withTrimmedRight (keyWidth + 10.0f),
                    juce::Justification::centredRight);
    }
}
} // namespace

juce::Image drawMotion()
{
    juce::Image image (juce::Image::RGB, width, height, true);
    juce::Graphics g (image);
    g.fillAll (juce::Colours::white);
    g.setFont (textHeight);
    juce::Rectangle<float> area (left, top, panelWidth, panelHeight);

    for (const auto& panel : panels)
    {
        drawPanel (g, area, panel);
        area.translate (distance, 0.0f);
    }

    return image;
}
} // namespace tarvelline
