// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped pictures and what is drawn on them.
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include "BinaryData.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <vector>

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

const juce::Colour tickColour (0xff203040), numberColour (0xfffaebd7);
constexpr const char* knobs[] = { "pitchGravitySlider",  "pitchInertiaSlider",  "pitchSmoothSlider", "mixerSlider",
                                  "timbreGravitySlider", "timbreInertiaSlider", "timbreSmoothSlider" };

juce::Image load (const char* data, int size)
{
    return juce::ImageFileFormat::loadFrom (data, static_cast<size_t> (size));
}
juce::Image artwork() { return load (BinaryData::background_png, BinaryData::background_pngSize); }
juce::Image largeArtwork() { return load (BinaryData::background2x_png, BinaryData::background2x_pngSize); }
juce::Image smallArtwork() { return load (BinaryData::backgroundSmall_png, BinaryData::backgroundSmall_pngSize); }

juce::Image pictureOfOnly (EditorRig& rig, std::initializer_list<const char*> controls, float scale = 1.0f)
{
    for (auto* child : rig.editor->getChildren())
        child->setVisible (false);

    for (const auto* id : controls)
        rig.control (id).setVisible (true);

    return pictureOf (*rig.editor, scale);
}

/** Each pixel the mean of four. Drawn twice: what was in the memory before shows through a corner of the first picture. */
juce::Image halved (const juce::Image& picture)
{
    auto half = picture.rescaled (picture.getWidth() / 2, picture.getHeight() / 2);
    juce::Graphics (half).drawImageTransformed (picture, juce::AffineTransform::scale (0.5f));
    return half;
}

// A picture enlarged, taken from the wrong source, resampled twice, or a pixel off.
TEST (Panel, IsAsSharpAsTheScreen)
{
    for (const auto& [height, scale, picture] : { std::tuple { 576, 1.0f, artwork() },
                                                  { 288, 2.0f, artwork() },
                                                  { 576, 2.0f, largeArtwork() },
                                                  { 288, 1.0f, halved (smallArtwork()) } })
        for (const auto full : { false, true })
        {
            EditorRig rig (height, full);
            const auto panel = pictureOfOnly (rig, {}, scale);
            EXPECT_EQ (panel.getWidth(), picture.getWidth() / (full ? 1 : 2));
            EXPECT_EQ (differingPixels (panel, picture, 1), 0) << height << " x " << scale;
        }
}

// The dial's face half a pixel off where its place is no whole pixel of the screen, or blended with its neighbours there.
TEST (Panel, ShowsTheDialsFaceAtFractionalScalesAsFinerOnesDo)
{
    for (const auto height : { 306, 342 }) // the dial at 77 and 86 pixels, 115.5 and 129 on the screen
    {
        EditorRig rig (height);
        auto dial = (rig.control ("pitchDial").getBounds().toFloat() * 1.5f).getSmallestIntegerContainer();
        const auto aboveNumber = dial.removeFromTop (dial.getHeight() / 3);
        const auto coarse = pictureOf (*rig.editor, 1.5f), fine = halved (pictureOf (*rig.editor, 3.0f));
        EXPECT_LT (differingPixels (coarse.getClippedImage (aboveNumber), fine.getClippedImage (aboveNumber), 12), 200)
            << height; // about 100; blended 600
    }
}

// A panel too dark for the ticks or too light for the numbers, or artwork that reaches under the ring. The ink is where
// the scales leave exactly their colours.
TEST (ScaleOnPanel, HasContrastOfThreeToOne)
{
    const auto panel = artwork();

    for (auto range = 0; range < 6; ++range)
    {
        EditorRig rig (576, true);
        rig.choose ("pitchRangeBox", range);
        rig.choose ("timbreRangeBox", range);
        const auto scales = pictureOfOnly (rig, { "pitchScaleSlider", "timbreScaleSlider" });

        for (const auto ink : { tickColour, numberColour })
        {
            auto least = 21.0;

            for (auto y = 0; y < panel.getHeight(); ++y)
                for (auto x = 0; x < panel.getWidth(); ++x)
                    if (scales.getPixelAt (x, y) == ink)
                        least = std::min (least, contrastRatio (ink, panel.getPixelAt (x, y)));

            EXPECT_GE (least, 3.0) << ink.toString();
            EXPECT_LT (least, 21.0) << "no ink found";
        }
    }
}

/** How a label reads: the mean luminance of the darkest quarter of the rectangle that its dark pixels span (its strokes' cores)
    against the ground, the median of the area around it; and where it stands. */
struct LabelReading
{
    LabelReading (const juce::Image& picture, Rectangle<int> area)
    {
        const auto sorted = [&] (Rectangle<int> part)
        {
            std::vector<double> values;

            for (auto y = part.getY(); y < part.getBottom(); ++y)
                for (auto x = part.getX(); x < part.getRight(); ++x)
                    values.push_back (luminance (picture.getPixelAt (x, y)));

            std::sort (values.begin(), values.end());
            return values;
        };

        const auto ground = sorted (area).at (static_cast<size_t> (area.getWidth() * area.getHeight() / 2));
        const auto isDark = [&] (juce::Colour c) { return luminance (c) < ground / 2.0; };
        const auto ink = boundsOf (picture.getClippedImage (area), isDark) + area.getPosition();
        auto cores = sorted (ink);
        cores.resize (cores.size() / 4);
        const auto core = std::accumulate (cores.begin(), cores.end(), 0.0) / static_cast<double> (cores.size());
        contrast = (ground + 0.05) / (core + 0.05);
        baseline = ink.getBottom();
    }

    double contrast;
    int baseline;
};

// Lettering that drowns in the panel, smeared over two pixels by its place or too thin for its size; labels of one row on
// different baselines.
TEST (Labels, ReadWellOnEvenBaselines)
{
    for (const auto& [height, least] : { std::pair { 288, 3.0 }, { 576, 4.5 } })
    {
        EditorRig rig (height, true);
        const auto panel = pictureOfOnly (rig, {});
        const auto reading =
            [&, least = least, divisor = 576 / height] (const char* name, int x, int y, int width, int heightOfArea)
        {
            const LabelReading label (panel, { x / divisor, y / divisor, width / divisor, heightOfArea / divisor });
            EXPECT_GE (label.contrast, least) << name << " at " << rig.editor->getHeight();
            return label.baseline * divisor;
        };

        for (const auto x : { 0, 512 })
        {
            EXPECT_EQ (reading ("PITCH, TIMBRE", x + 220, 6, 74, 16), 20);
            EXPECT_EQ (reading ("RANGE", x + 14, 74, 86, 16), 88);
            EXPECT_EQ (reading ("SNAP", x + 422, 74, 62, 16), 88);
            EXPECT_EQ (reading ("GRAVITY", x + 84, 500, 78, 16), 512);
            EXPECT_EQ (reading ("INERTIA", x + 216, 500, 78, 16), 512);
            EXPECT_EQ (reading ("SMOOTH", x + 350, 500, 78, 16), 512);
        }

        EXPECT_EQ (reading ("MIDI", 14, 498, 60, 16), 512);
        EXPECT_EQ (reading ("MIX", 444, 554, 52, 16), 566);
        EXPECT_EQ (reading ("the product", 202, 366, 108, 18), 382);
        EXPECT_EQ (reading ("what it is", 660, 548, 216, 18), 562);
    }
}

// A read-out on the scale's numbers, on artwork too dark for it, in a colour near the ground's or not dark as the other
// lettering, or nearer to another knob.
TEST (ReadOut, CoversNothingAndReadsWellAtEverySize)
{
    for (auto height = 258; height <= 576; height += 6)
    {
        EditorRig rig (height, true);
        juce::Image scales (juce::Image::ARGB, rig.editor->getWidth(), height, true);
        EditorRig bare (height, true);
        const auto panel = pictureOfOnly (bare, {});

        for (auto range = 0; range < 6; ++range)
            for (const juce::String side : { "pitch", "timbre" })
            {
                rig.choose (side + "RangeBox", range);
                auto& scale = rig.control (side + "ScaleSlider");
                juce::Graphics (scales).drawImageAt (pictureOf (scale), scale.getX(), scale.getY());
            }

        for (const auto* id : knobs)
        {
            auto& label = rig.readOut();
            const auto knob = rig.control (id).getBounds();
            rig.turn (id, 0.0);
            rig.turn (id, 0.88);
            const auto text = textsOf (label).at (0);
            EXPECT_EQ (text.text, "0.88");
            EXPECT_GE (text.squeeze, 0.97f);
            EXPECT_TRUE (text.typeface.startsWith ("Sci Fied 2002")); // Windows adds its style
            EXPECT_EQ (label.getBounds().getCentreX(), knob.getCentreX()) << id;

            const auto picture = pictureOf (label);

            for (auto y = 0; y < picture.getHeight(); ++y)
                for (auto x = 0; x < picture.getWidth(); ++x)
                    if (picture.getPixelAt (x, y).getAlpha() > 0)
                    {
                        const auto at = label.getPosition() + juce::Point<int> (x, y);
                        const auto ground = panel.getPixelAt (at.x, at.y);
                        ASSERT_EQ (scales.getPixelAt (at.x, at.y).getAlpha(), 0) << id << " at " << height;
                        ASSERT_LE (at.y, knob.getY()) << id << " at " << height;
                        ASSERT_GE ((luminance (ground) + 0.05) / (luminance (ground.overlaidWith (text.colour)) + 0.05),
                                   3.0)
                            << id << " at " << height;
                    }
        }
    }
}

// Text that outgrows its control is cut or squeezed by the framework without a word; a number and a word side by side on
// different levels; colours given to the wrong look.
TEST (Panel, TextsStandWholeAndLevelAtEverySize)
{
    for (const auto height : { 258, 288, 400, 576 })
        for (const auto on : { false, true })
        {
            EditorRig rig (height, true);
            rig.choose ("pitchRangeBox", on ? 5 : 4);
            rig.toggle ("pitchSnapButton", on);
            rig.toggle ("midiModeButton", on);
            for (const auto& [id, words, share] : { std::tuple { "pitchRangeBox", on ? "48" : "24", 0.8f },
                                                    { "pitchSnapButton", on ? "On" : "Off", 0.8f },
                                                    { "midiModeButton", on ? "Single" : "Multi", 0.4f } })
            {
                const auto& control = rig.control (id);
                const auto text = textsOf (rig.control (id)).at (0);
                EXPECT_EQ (text.text, words) << height;
                EXPECT_FLOAT_EQ (text.height, static_cast<float> (control.getHeight()) * share);
                EXPECT_GE (text.squeeze, 0.97f) << words << " at " << height;
                EXPECT_GE (text.left, 1.0f) << words << " at " << height;
                EXPECT_NEAR (text.left + text.right, static_cast<float> (control.getWidth()), 1.0f) << words;
                EXPECT_EQ (text.colour, juce::Colours::white);
                EXPECT_LE (boundsOf (pictureOf (rig.control (id)), isInk).getWidth(), text.right - text.left + 2.0f)
                    << "the text alone, no box or arrow";
            }

            EXPECT_EQ (textsOf (rig.control ("pitchRangeBox")).at (0).baseline,
                       textsOf (rig.control ("pitchSnapButton")).at (0).baseline);
        }
}
// A highlight that cannot be told from the menu's ground, or that its text drowns in.
TEST (RangeMenu, ShowsItsHighlight)
{
    EditorRig rig;
    const auto colour = [&] (int id) { return rig.control ("pitchRangeBox").getLookAndFeel().findColour (id); };
    const auto ground = colour (juce::PopupMenu::backgroundColourId);
    const auto highlight = colour (juce::PopupMenu::highlightedBackgroundColourId);
    EXPECT_GE (contrastRatio (highlight, ground), 2.3); // black would give 2.46
    EXPECT_GE (contrastRatio (colour (juce::PopupMenu::textColourId), ground), 4.5);
    EXPECT_GE (contrastRatio (colour (juce::PopupMenu::highlightedTextColourId), highlight), 4.5);
}
} // namespace
} // namespace tarvelline::test
