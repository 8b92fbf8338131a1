// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/StretchedPicture.h"

namespace tarvelline
{
namespace
{
juce::AffineTransform stretching (juce::Rectangle<int> from, juce::Rectangle<int> to)
{
    return juce::AffineTransform::scale (static_cast<float> (to.getWidth()) / static_cast<float> (from.getWidth()),
                                         static_cast<float> (to.getHeight()) / static_cast<float> (from.getHeight()))
        .translated (to.getPosition());
}
} // namespace

void StretchedPicture::setSource (const juce::Image& image)
{
    source = image;
    stretched = {};
}

void StretchedPicture::draw (juce::Graphics& g, juce::Rectangle<int> area)
{
    if (! source.isValid() || area.isEmpty())
        return;

    const auto pixels = area.withZeroOrigin() * g.getInternalContext().getPhysicalPixelScaleFactor();

    if (stretched.getBounds() != pixels)
    {
        stretched = juce::Image (source.getFormat(), pixels.getWidth(), pixels.getHeight(), true);
        juce::Graphics (stretched).drawImageTransformed (source, stretching (source.getBounds(), pixels));
    }

    // A rectangle filled with the picture, and not the picture drawn: what the framework draws it first makes into an edge
    // table, which is a cost of its own where only a few spots are painted.
    g.setFillType ({ stretched, stretching (pixels, area) });
    g.fillRect (area);
}
} // namespace tarvelline
