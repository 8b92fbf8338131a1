// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A picture of the resources at its natural size and at double, so that no screen need enlarge it. Message thread only. */
class ScalablePicture
{
public:
    ScalablePicture (const char* naturalData, int naturalSize, const char* doubleData, int doubleSize)
        : natural (juce::ImageCache::getFromMemory (naturalData, naturalSize)),
          large (juce::ImageCache::getFromMemory (doubleData, doubleSize))
    {
    }

    /** At its natural size; empty if it cannot be decoded. */
    juce::Rectangle<float> getBounds() const { return natural.getBounds().toFloat(); }

    /** The one to draw. @param scale  pixels of the screen a pixel of the natural size */
    const juce::Image& at (float scale) const { return scale > 1.0f ? large : natural; }

    /** From one of the two to the natural size. */
    juce::AffineTransform toNatural (const juce::Image& picture) const
    {
        return juce::AffineTransform::scale (getBounds().getWidth() / static_cast<float> (picture.getWidth()));
    }

private:
    juce::Image natural, large;
};
} // namespace tarvelline
