// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <vector>

namespace tarvelline::render
{
/** One value of an axis that is marked, with its place along it: 0 the left or lower end, 1 the other. */
struct Tick
{
    double place = 0.0;
    juce::String label;
};

std::vector<Tick> secondTicks (double seconds);
std::vector<Tick> hertzTicks (double lowHz, double highHz); // for a logarithmic axis
std::vector<Tick> evenTicks (int low, int high, int step, bool withSign);

/** Draw marks and labels outside an area's edge, and the axis's name beyond them, in the current colour. */
void drawBottomAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
void drawLeftAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
void drawRightAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
} // namespace tarvelline::render
