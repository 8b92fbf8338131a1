// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>

namespace tarvelline
{
/** A picture drawn over and over at one size: it is resampled once, for the screen's own pixels, and copied from then on.
    Message thread only. */
class StretchedPicture
{
public:
    /** Called whenever the picture is to be resampled. @param width  pixels of the screen that it is to cover */
    using Source = std::function<juce::Image (float width)>;

    explicit StretchedPicture (Source source) : getSource (std::move (source)) {}

    /** Draws the picture over an area of the component that is being painted: resampled anew when its place on the screen
        or the screen's scale differ from the last time's. An invalid source draws nothing. */
    void draw (juce::Graphics&, const juce::Component&, juce::Rectangle<int> area);

private:
    const Source getSource;
    juce::Rectangle<float> place; // of the picture drawn last, in pixels of the window
    juce::Image stretched;
};
} // namespace tarvelline
