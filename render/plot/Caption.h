// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvelline::render
{
/** Draws a line with a file's name in it, at the left of an area, as high as the current font and in its colour.

    A name that is too long loses its middle, so that both its ends can be read. What the default font has no sign for is drawn
    with the installed font that has most of it; signs that this one lacks, too, become question marks. */
void drawCaption (juce::Graphics&, juce::Rectangle<float> area, const juce::String& before, const juce::String& name,
                  const juce::String& after);
} // namespace tarvelline::render
