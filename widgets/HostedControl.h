// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvelline
{
/** Opens the host's own menu for the parameter that a control of an editor is bound to, as getControlParameterIndex() has it.
    @returns false, and does nothing, where the host offers no such menu */
bool showHostMenu (juce::Component& control);

/** A control with the manners that hosts expect: a right click opens the host's menu for its parameter, where there is one, and
    does nothing else. Message thread only. */
template <typename Control>
class HostedControl : public Control
{
public:
    using Control::Control;

    void mouseDown (const juce::MouseEvent& event) override
    {
        hostHasClick = event.mods.isPopupMenu() && showHostMenu (*this);

        if (! hostHasClick)
            Control::mouseDown (event);
    }

    void mouseDrag (const juce::MouseEvent& event) override
    {
        if (! hostHasClick)
            Control::mouseDrag (event);
    }

    void mouseUp (const juce::MouseEvent& event) override
    {
        if (! hostHasClick)
            Control::mouseUp (event);
    }

private:
    bool hostHasClick = false; // the click that began last, up to its end
};
} // namespace tarvelline
