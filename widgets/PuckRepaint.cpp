// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/PuckRepaint.h"

#include "widgets/MainRotaryDraw.h"

namespace tarvelline
{
void PuckRepaint::paint (juce::Graphics& g)
{
    shownArea = puckArea();
    wheel.paintEntireComponent (g, false);
}

/** @returns whether the whole wheel is to be repainted after all */
bool PuckRepaint::invalidateAll()
{
    if (shownArea.isEmpty()) // not painted yet, or without its look
        return true;

    wheel.repaint (shownArea);
    wheel.repaint (puckArea());
    return false;
}

juce::Rectangle<int> PuckRepaint::puckArea() const
{
    const auto* look = dynamic_cast<const MainRotaryDraw*> (&wheel.getLookAndFeel());
    return look != nullptr ? look->puckArea (wheel) : juce::Rectangle<int>();
}
} // namespace tarvelline
