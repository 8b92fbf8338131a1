// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Cuts the repaints of a wheel down to its puck: where it was and where it is now.

    A slider asks for its whole area whenever its value changes, 330 x 330 pixels of panel and scale for a puck of 51 x 55.
    What the framework has for pictures kept in memory is the only place that hears of it before the window does. Give it to
    sliders with the look MainRotaryDraw, by setCachedComponentImage(). Message thread only. */
class PuckRepaint : public juce::CachedComponentImage
{
public:
    explicit PuckRepaint (juce::Slider& wheelSlider) : wheel (wheelSlider) {}

    void paint (juce::Graphics&) override;
    bool invalidateAll() override;
    bool invalidate (const juce::Rectangle<int>&) override { return true; }
    void releaseResources() override {}

private:
    juce::Rectangle<int> puckArea() const;

    juce::Slider& wheel;
    juce::Rectangle<int> shownArea; // where the puck was last painted
};
} // namespace tarvelline
