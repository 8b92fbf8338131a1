// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <type_traits>

namespace tarvelline
{
/** Opens the host's own menu for the parameter that a control of an editor is bound to, as getControlParameterIndex() has it.
    @returns false, and does nothing, where the host offers no such menu */
bool showHostMenu (juce::Component& control);

/** A control with the manners that hosts expect: a right click opens the host's menu for its parameter, where there is one, and
    does nothing else; a value stepped with the arrow keys is one gesture, like a drag. Message thread only. */
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

    void mouseDoubleClick (const juce::MouseEvent& event) override
    {
        if (! hostHasClick)
            Control::mouseDoubleClick (event);
    }

    bool keyPressed (const juce::KeyPress& key) override
    {
        if constexpr (std::is_base_of_v<juce::Slider, Control>)
        {
            using Key = juce::KeyPress;

            for (const auto arrow : { Key::leftKey, Key::rightKey, Key::upKey, Key::downKey })
            {
                if (key == Key (arrow))
                {
                    const juce::Slider::ScopedDragNotification gesture (*this);
                    return Control::keyPressed (key);
                }
            }
        }

        return Control::keyPressed (key);
    }

private:
    bool hostHasClick = false; // the click that began last, up to its end
};
} // namespace tarvelline
