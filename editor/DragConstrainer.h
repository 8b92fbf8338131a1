// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Holds the window to its limits and its ratio while the mouse drags it. Bounds that a host gives it stand as they are: where
    they are of another ratio, larger ones of the right ratio would reach out of the host's window. Message thread only. */
class DragConstrainer : public juce::ComponentBoundsConstrainer
{
public:
    void checkBounds (juce::Rectangle<int>& bounds, const juce::Rectangle<int>& before,
                      const juce::Rectangle<int>& limits, bool top, bool left, bool bottom, bool right) override
    {
        if (juce::Component::isMouseButtonDownAnywhere())
            ComponentBoundsConstrainer::checkBounds (bounds, before, limits, top, left, bottom, right);
    }
};
} // namespace tarvelline
