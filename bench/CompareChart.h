// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvelline::bench
{
struct Curve
{
    juce::String name; // shown where there are several
    std::vector<double> y;
};

/** Curves over one quantity. The upright axis starts at 0. */
struct Panel
{
    juce::String name;  // of the level axis
    bool isLogarithmic; // that axis
    std::vector<double> x;
    std::vector<Curve> curves; // at most two
};

/** Draws four panels into one PNG. */
void saveChart (const std::vector<Panel>&, const juce::String& yName, const juce::File&);
} // namespace tarvelline::bench
