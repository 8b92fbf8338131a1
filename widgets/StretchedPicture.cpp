// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/StretchedPicture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarvelline
{
namespace
{
constexpr float edgeTolerance = 0.01f; // pixels: an edge this near to a pixel's is meant to lie on it

/** What a pixel of the result takes from a row or column of the source. */
struct Cover
{
    int first;
    std::vector<float> shares; // of the sources from `first` on; they add up to 1
};

/** Each pixel takes the mean of what it covers (a box filter), so that detail finer than a pixel never beats against the
    screen's grid; never less than one source, which is linear interpolation where the source is the coarser one.
    @param start, length  where the source lies, in pixels of the result */
std::vector<Cover> coversOf (int pixels, float start, float length, int sources)
{
    const auto step = static_cast<float> (sources) / length;
    const auto halfCovered = std::max (step, 1.0f) / 2.0f;
    std::vector<Cover> covers;

    for (auto pixel = 0; pixel < pixels; ++pixel)
    {
        const auto middle =
            std::clamp ((static_cast<float> (pixel) + 0.5f - start) * step, 0.5f, static_cast<float> (sources) - 0.5f);
        const auto from = std::max (middle - halfCovered, 0.0f);
        const auto to = std::min (middle + halfCovered, static_cast<float> (sources));
        auto& [first, shares] = covers.emplace_back (Cover { static_cast<int> (from), {} });

        for (auto source = static_cast<float> (first); source < to; source += 1.0f)
            shares.push_back ((std::min (source + 1.0f, to) - std::max (source, from)) / (to - from));
    }

    return covers;
}

using Data = juce::Image::BitmapData;

/** Of one channel; colours are stored multiplied by their alpha. */
juce::uint8 mean (const Data& source, const Cover& row, const Cover& column, int channel)
{
    auto sum = 0.5f; // rounds

    for (auto y = row.first; const auto rowShare : row.shares)
    {
        const auto* pixel = source.getPixelPointer (column.first, y++) + channel;

        for (const auto share : column.shares)
        {
            sum += rowShare * share * *pixel;
            pixel += source.pixelStride;
        }
    }

    return static_cast<juce::uint8> (sum);
}

/** @param place  where the source is to lie, @param pixels  the whole pixels around that */
juce::Image resampled (const juce::Image& source, juce::Rectangle<float> place, juce::Rectangle<int> pixels)
{
    const auto start = place.getPosition() - pixels.getPosition().toFloat();
    const auto columns = coversOf (pixels.getWidth(), start.x, place.getWidth(), source.getWidth());
    const auto rows = coversOf (pixels.getHeight(), start.y, place.getHeight(), source.getHeight());
    juce::Image result (source.getFormat(), pixels.getWidth(), pixels.getHeight(), false);
    const Data from (source, Data::readOnly), to (result, Data::writeOnly);

    for (auto y = 0; y < to.height; ++y)
        for (auto x = 0; x < to.width; ++x)
            for (auto channel = 0; channel < from.pixelStride; ++channel)
                to.getPixelPointer (x, y)[channel] =
                    mean (from, rows[static_cast<size_t> (y)], columns[static_cast<size_t> (x)], channel);

    return result;
}

/** Where a component's corner lies in its window, in pixels of the screen. */
juce::Point<float> cornerOnScreen (const juce::Component& component, float pixelsPerUnit)
{
    auto& window = *component.getTopLevelComponent();
    const auto corner = window.getLocalPoint (&component, juce::Point<float>());
    const auto unit = window.getLocalPoint (&component, juce::Point<float> (1.0f, 0.0f)).x - corner.x;
    return corner * (pixelsPerUnit / unit); // a host may have scaled what the window holds
}

juce::Rectangle<int> pixelsAround (juce::Rectangle<float> place)
{
    return place.reduced (edgeTolerance).getSmallestIntegerContainer();
}
} // namespace

void StretchedPicture::draw (juce::Graphics& g, const juce::Component& component, juce::Rectangle<int> area)
{
    const auto scale = g.getInternalContext().getPhysicalPixelScaleFactor();
    const auto corner = cornerOnScreen (component, scale);
    const auto newPlace = area.toFloat() * scale + corner;
    const auto pixels = pixelsAround (newPlace);

    if (pixels.isEmpty())
        return;

    if (newPlace != place || ! stretched.isValid())
    {
        const auto source = getSource (newPlace.getWidth());

        if (! source.isValid())
            return;

        stretched = resampled (source, newPlace, pixels);
        place = newPlace;
    }

    // A rectangle filled with the picture, and not the picture drawn: what the framework draws it first makes into an edge
    // table, which is a cost of its own where only a few spots are painted. The tolerance keeps rounding from making the
    // whole pixel that the framework copies by into a fraction, at which it would blend neighbours.
    const auto position = pixels.getPosition().toFloat() - corner + juce::Point<float> (edgeTolerance, edgeTolerance);
    g.setFillType ({ stretched, juce::AffineTransform::translation (position).scaled (1.0f / scale) });
    g.fillRect (area);
}
} // namespace tarvelline
