// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped pictures and what is drawn on them.
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"

#include "BinaryData.h"

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

constexpr const char* knobs[] = { "pitchGravitySlider",  "pitchInertiaSlider",  "pitchSmoothSlider", "mixerSlider",
                                  "timbreGravitySlider", "timbreInertiaSlider", "timbreSmoothSlider" };

juce::Image load (const char* data, int size)
{
    return juce::ImageFileFormat::loadFrom (data, static_cast<size_t> (size));
}
juce::Image artwork() { return load (BinaryData::background_png, BinaryData::background_pngSize); }
juce::Image largeArtwork() { return load (BinaryData::background2x_png, BinaryData::background2x_pngSize); }
juce::Image smallArtwork() { return load (BinaryData::backgroundSmall_png, BinaryData::backgroundSmall_pngSize); }

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
            const auto panel = EditorRig (height, full).panel (scale);
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

// A read-out on the scale's numbers, on artwork too dark for it, in a colour near the ground's or not dark as the other
// lettering, or nearer to another knob.
TEST (ReadOut, CoversNothingAndReadsWellAtEverySize)
{
    for (auto height = 258; height <= 576; height += 6)
    {
        EditorRig rig (height, true);
        juce::Image scales (juce::Image::ARGB, rig.editor->getWidth(), height, true);
        const auto panel = EditorRig (height, true).panel();

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
            EXPECT_NEAR (text.left + text.right, static_cast<float> (label.getWidth()), 2.0f) << "in its middle";
            EXPECT_NE (rig.editor->getComponentAt (label.getBounds().getCentre()), &label) << "lets the mouse through";

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
} // namespace
} // namespace tarvelline::test
