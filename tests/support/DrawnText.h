// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <vector>

namespace tarvelline::test
{
/** A line of text as it was drawn, read back from its glyphs: what it says, where, in which type and colour. */
struct DrawnText
{
    juce::String text; // with the blanks between words, but none at the ends
    float left = 0.0f; // of the picture, as the font's advances have it
    float right = 0.0f;
    float baseline = 0.0f;
    float height = 0.0f;   // of the font
    float squeeze = 1.0f;  // drawn width over natural width
    juce::String typeface; // its family
    juce::Colour colour;   // with the opacity it was drawn in
};

/** All text that a component and its children show, line by line in the order of drawing. Printable ASCII only. */
std::vector<DrawnText> textsOf (juce::Component&);
} // namespace tarvelline::test
