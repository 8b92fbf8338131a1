// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped picture and what is drawn on it.
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include "BinaryData.h"

#include <map>

namespace tarvelline::test
{
namespace
{
const juce::Colour tickColour (0xff203040), numberColour (0xfffaebd7);

juce::Image artwork()
{
    return juce::ImageFileFormat::loadFrom (BinaryData::background_png, BinaryData::background_pngSize);
}

juce::Image pictureOfOnly (EditorRig& rig, std::initializer_list<const char*> controls)
{
    for (auto* child : rig.editor->getChildren())
        child->setVisible (false);

    for (const auto* id : controls)
        rig.control (id).setVisible (true);

    return pictureOf (*rig.editor);
}

TEST (Panel, IsTheWholePictureOrItsLeftHalf)
{
    EditorRig full (576, true), half (576, false);
    EXPECT_EQ (pictureOfOnly (full, {}).getWidth(), 1024);
    EXPECT_EQ (differingPixels (pictureOfOnly (full, {}), artwork(), 1), 0);
    EXPECT_EQ (pictureOfOnly (half, {}).getWidth(), 512);
    EXPECT_EQ (differingPixels (pictureOfOnly (half, {}), artwork(), 1), 0);
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

            EXPECT_GE (least, 3.0) << ink.toString(); // measured: 3.16 for both
            EXPECT_LT (least, 21.0) << "no ink found";
        }
    }
}

// The read-out is half transparent: what counts is the mixed colour on the plain ground it must lie on.
TEST (ReadOutOnPanel, HasContrastOfThreeToOne)
{
    const auto panel = artwork();
    EditorRig rig (576, true);

    for (const auto& [control, id] : boundSliders)
    {
        if (juce::String (control).contains ("Wheel"))
            continue;

        rig.turn (control, 0.33);
        const auto area = rig.readOut().getBounds().reduced (2);

        for (auto y = area.getY(); y < area.getBottom(); ++y)
            for (auto x = area.getX(); x < area.getRight(); ++x)
            {
                const auto ground = panel.getPixelAt (x, y);
                ASSERT_GE (contrastRatio (ground, ground.overlaidWith (juce::Colour (0xc0101030))), 3.0) << control;
            }
    }
}

// Colours given to the wrong look, or to none.
TEST (Panel, ShowsItsControlsInTheirColours)
{
    EditorRig rig (576, true);
    std::map<juce::String, DrawnText> shown;

    for (auto* part : { static_cast<juce::Component*> (rig.editor.get()), &rig.control ("pitchScaleSlider") })
        for (const auto& text : textsOf (*part)) // the scale by itself: the editor shows a stored image of it
            shown[text.text] = text;

    EXPECT_EQ (shown.at ("+6").colour, numberColour);
    EXPECT_FLOAT_EQ (shown.at ("12").height, 40.0f);
    EXPECT_FLOAT_EQ (shown.at ("On").height, 40.0f);
    EXPECT_FLOAT_EQ (shown.at ("Single").height, 48.0f * 0.4f);

    const auto knob = pictureOf (rig.control ("pitchInertiaSlider"));
    EXPECT_GT (boundsOf (knob, [] (juce::Colour c) { return c == juce::Colours::white; }).getHeight(), 15);
}

// Text that outgrows its frame is cut or squeezed by the framework without a word.
TEST (Panel, TextsFitTheirControlsAtEverySize)
{
    for (const auto height : { 258, 288, 400, 576 })
    {
        EditorRig rig (height, true);
        rig.choose ("pitchRangeBox", 5);
        rig.turn ("mixerSlider", 0.0);
        rig.turn ("mixerSlider", 0.88);
        EXPECT_EQ (wordsOf (rig.readOut()), std::vector<juce::String> { "0.88" });

        for (const auto& [id, words] : { std::pair { "pitchRangeBox", "48" }, std::pair { "pitchSnapButton", "On" },
                                         std::pair { "midiModeButton", "Single" } })
        {
            const auto text = textsOf (rig.control (id)).at (0);
            EXPECT_EQ (text.text, words) << height;
            EXPECT_GE (text.left, 1.0f) << words << " at " << height;
            EXPECT_LE (text.right, static_cast<float> (rig.control (id).getWidth()) - 1.0f)
                << words << " at " << height;
        }
    }
}
} // namespace
} // namespace tarvelline::test
