// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvelline::bench
{
/** One curve over one quantity. The upright axis starts at 0. */
struct Panel
{
    juce::String name;  // of the level axis
    bool isLogarithmic; // that axis
    std::vector<double> x, y;
};

/** Draws four panels into one PNG. */
void saveChart (const std::vector<Panel>&, const juce::String& yName, const juce::File&);
} // namespace tarvelline::bench
