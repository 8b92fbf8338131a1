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

/** For an axis from 0: labels are seconds, and from a minute on minutes:seconds, from an hour on hours:minutes:seconds, as
    the axis's name says. */
std::vector<Tick> timeTicks (double seconds);
juce::String timeName (double seconds);

std::vector<Tick> hertzTicks (double lowHz, double highHz); // for a logarithmic axis
std::vector<Tick> evenTicks (int low, int high, int step, bool withSign);

/** Draw marks and labels outside an area's edge, and the axis's name beyond them, in the current colour and font. A label
    that would touch the one before it on a bottom axis is left out. */
void drawBottomAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
void drawLeftAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
void drawRightAxis (juce::Graphics&, juce::Rectangle<float> area, const std::vector<Tick>&, const juce::String& name);
} // namespace tarvelline::render
