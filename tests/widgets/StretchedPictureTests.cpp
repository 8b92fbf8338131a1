// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/PixelMeters.h"
#include "widgets/StretchedPicture.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
/** Stripes one source pixel wide, black and white, stretched over 120 pixels. */
struct Stripes : juce::Component
{
    explicit Stripes (int count) : source (juce::Image::RGB, count, 1, true)
    {
        for (auto x = 1; x < count; x += 2)
            source.setPixelAt (x, 0, juce::Colours::white);

        setSize (120, 1);
    }

    void paint (juce::Graphics& g) override { picture.draw (g, *this, getLocalBounds()); }

    juce::Image source;
    StretchedPicture picture { [this] (float) { return source; } };
};

// Detail finer than a pixel that beats against the screen's grid, or steps where a coarse picture is enlarged.
TEST (StretchedPicture, AveragesWhatIsFinerAndInterpolatesWhatIsCoarser)
{
    Stripes fine (200), coarse (10);
    const auto shrunk = pictureOf (fine), enlarged = pictureOf (coarse);
    const auto grey = [] (const juce::Image& picture, int x) { return picture.getPixelAt (x, 0).getRed() / 255.0f; };

    for (auto x = 0; x < 120; ++x)
        EXPECT_NEAR (grey (shrunk, x), 0.5f, 0.105f) << x; // a pixel covers 5/3 stripes

    for (auto x = 6; x < 114; ++x) // the stripes' middles are 12 pixels apart
        EXPECT_NEAR (grey (enlarged, x), std::abs (std::remainder (static_cast<float> (x) - 5.5f, 24.0f)) / 12.0f,
                     0.01f)
            << x;
}
} // namespace
} // namespace tarvelline::test
