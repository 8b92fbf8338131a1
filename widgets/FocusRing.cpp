// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FocusRing.h"

namespace tarvelline
{
namespace
{
// Dark on both sides of the accent: at least 3:1 against whatever lies beside it, panel or knob.
constexpr juce::uint32 ringColour = 0xfff97e04, edgeColour = 0xff10161e;
constexpr float ringWidth = 2.0f, edgeWidth = 4.0f; // pixels
constexpr float cornerSize = 6.0f;
constexpr int edge = 2, margin = 3; // pixels: from the window's edge to the ring, from the control to what is repainted
} // namespace

FocusRing::FocusRing()
{
    setInterceptsMouseClicks (false, false);
    setAccessible (false);
    juce::Desktop::getInstance().addFocusChangeListener (this);
}

FocusRing::~FocusRing() { juce::Desktop::getInstance().removeFocusChangeListener (this); }

void FocusRing::parentSizeChanged() { setBounds (getParentComponent()->getLocalBounds()); }

void FocusRing::globalFocusChanged (juce::Component* focused)
{
    if (focused != nullptr && focused == getTopLevelComponent() && focused != getParentComponent())
        getParentComponent()->grabKeyboardFocus();

    while (focused != nullptr && focused->getParentComponent() != getParentComponent())
        focused = focused->getParentComponent();

    repaintRing();
    target = focused;
    repaintRing();
}

void FocusRing::repaintRing()
{
    if (target != nullptr)
        repaint (target->getBounds().expanded (margin));
}

void FocusRing::paint (juce::Graphics& g)
{
    if (target == nullptr || ! g.clipRegionIntersects (target->getBounds().expanded (margin)))
        return;

    const auto area = target->getBounds().getIntersection (getLocalBounds().reduced (edge)).toFloat();
    juce::Path ring;

    if (dynamic_cast<juce::Slider*> (target.getComponent()) != nullptr)
        ring.addEllipse (area);
    else
        ring.addRoundedRectangle (area, cornerSize);

    for (const auto& [colour, width] : { std::pair { edgeColour, edgeWidth }, std::pair { ringColour, ringWidth } })
    {
        g.setColour (juce::Colour (colour));
        g.strokePath (ring, juce::PathStrokeType (width));
    }
}
} // namespace tarvelline
