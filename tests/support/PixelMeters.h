// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <vector>

namespace tarvelline::test
{
/** Meters for pictures. Angles are in radians and grow clockwise from the top, as those of the rotary controls do. */
using PixelTest = std::function<bool (juce::Colour)>;

bool isInk (juce::Colour);    // more opaque than not
bool isOrange (juce::Colour); // the accent: of the puck's bar, the dial's mark and the lit keys

/** What a component and its children paint, on a screen of so many pixels a unit; transparent where they paint nothing. */
juce::Image pictureOf (juce::Component&, float scale = 1.0f);

/** The middles of the lit runs around a circle, as angles of pi to 3 pi. */
std::vector<float> litRuns (const juce::Image&, juce::Point<float> centre, float radius, const PixelTest&);

/** Centre of gravity of the pixels that pass; not a number when none does. */
juce::Point<float> centreOf (const juce::Image&, juce::Rectangle<int> area, const PixelTest&);

/** The smallest rectangle around the pixels that pass; empty when none does. */
juce::Rectangle<int> boundsOf (const juce::Image&, const PixelTest&);

/** Pixels, within both pictures, of which a channel differs by more than `tolerance`. */
int differingPixels (const juce::Image&, const juce::Image&, int tolerance);

/** Relative luminance of an opaque colour, as accessibility guidelines define it: black 0 to white 1. */
double luminance (juce::Colour);

/** Contrast of two opaque colours as accessibility guidelines define it: 1 (none) to 21 (black on white). */
double contrastRatio (juce::Colour, juce::Colour);
} // namespace tarvelline::test
