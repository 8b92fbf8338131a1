// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvelline
{
/** A picture drawn over and over at one size: it is resampled once and copied from then on. Message thread only. */
class StretchedPicture
{
public:
    /** An invalid image draws nothing. */
    void setSource (const juce::Image&);

    /** Draws the picture over the whole area, as sharp as the screen is: resampled anew when area or screen scale differ from
        the last time's. */
    void draw (juce::Graphics&, juce::Rectangle<int> area);

private:
    juce::Image source, stretched;
};
} // namespace tarvelline
