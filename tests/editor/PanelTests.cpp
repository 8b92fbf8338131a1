// SPDX-License-Identifier: GPL-3.0-or-later
// The shipped picture and what is drawn on it.
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include "BinaryData.h"

#include <iostream>

namespace tarvelline::test
{
namespace
{
constexpr auto tickColour = 0xff203040, numberColour = 0xfffaebd7;

juce::Image artwork()
{
    return juce::ImageFileFormat::loadFrom (BinaryData::background_png, BinaryData::background_pngSize);
}

void openFull (EditorRig& rig)
{
    rig.set (parameterId::toggleSize, 1.0f);
    rig.processor.uiHeight = 576;
}

TEST (Panel, IsTheWholePictureOrItsLeftHalf)
{
    EditorRig full (openFull), half ([] (EditorRig&r) { r.processor.uiHeight = 576; });

    for (auto* rig : { &full, &half })
    {
        for (auto* child : rig->editor->getChildren())
            child->setVisible (false);

        const auto picture = pictureOf (*rig->editor);
        EXPECT_EQ (picture.getWidth(), rig == &full ? 1024 : 512);
        EXPECT_EQ (differingPixels (picture, artwork(), 1), 0);
    }
}

struct Contrast
{
    double ticks = 21.0, numbers = 21.0;
    int tickPixels = 0, numberPixels = 0;
};

/** The least contrast between the ink of both scales and the panel under it. The ink is where showing the scale leaves
    exactly the colour of the ticks or the numbers. */
Contrast scaleContrast (EditorRig& rig)
{
    for (auto* child : rig.editor->getChildren())
        child->setVisible (false);

    const auto ground = pictureOf (*rig.editor);
    rig.control ("pitchScaleSlider").setVisible (true);
    rig.control ("timbreScaleSlider").setVisible (true);
    const auto scales = pictureOf (*rig.editor);
    Contrast contrast;

    for (auto y = 0; y < ground.getHeight(); ++y)
    {
        for (auto x = 0; x < ground.getWidth(); ++x)
        {
            const auto ink = scales.getPixelAt (x, y);
            const auto under = ground.getPixelAt (x, y);

            if (ink == juce::Colour (tickColour))
            {
                contrast.ticks = std::min (contrast.ticks, contrastRatio (ink, under));
                ++contrast.tickPixels;
            }
            else if (ink == juce::Colour (numberColour))
            {
                contrast.numbers = std::min (contrast.numbers, contrastRatio (ink, under));
                ++contrast.numberPixels;
            }
        }
    }

    return contrast;
}

class ScaleOnPanel : public testing::TestWithParam<int>
{
};

// A panel too dark for the ticks or too light for the numbers, or artwork that reaches under the ring.
TEST_P (ScaleOnPanel, IsLegible)
{
    EditorRig rig (openFull);
    rig.choose ("pitchRangeBox", GetParam());
    rig.choose ("timbreRangeBox", GetParam());
    const auto contrast = scaleContrast (rig);

    EXPECT_GE (contrast.ticks, 3.0);
    EXPECT_GE (contrast.numbers, 3.0);
    EXPECT_GT (contrast.tickPixels, 300);
    EXPECT_GT (contrast.numberPixels, 50);
    std::cout << "    contrast: ticks " << contrast.ticks << " : 1 (" << contrast.tickPixels << " pixels), numbers "
              << contrast.numbers << " : 1 (" << contrast.numberPixels << " pixels)\n";
}

INSTANTIATE_TEST_SUITE_P (Ranges, ScaleOnPanel, testing::Range (0, 6));

// The read-out is half transparent: what counts is the mixed colour on the plain ground it must lie on.
TEST (ReadOutOnPanel, IsLegible)
{
    const auto panel = artwork();
    EditorRig rig (openFull);
    auto least = 21.0;

    for (const auto& [control, id] : boundSliders)
    {
        if (juce::String (control).contains ("Wheel"))
            continue;

        rig.slider (control).setValue (0.33, juce::sendNotificationSync);
        const auto area = rig.readOut().getBounds().reduced (2);

        for (auto y = area.getY(); y < area.getBottom(); ++y)
            for (auto x = area.getX(); x < area.getRight(); ++x)
            {
                const auto ground = panel.getPixelAt (x, y);
                least = std::min (least, contrastRatio (ground, ground.overlaidWith (juce::Colour (0xc0101030))));
            }

        EXPECT_GE (least, 3.0) << control;
    }

    std::cout << "    contrast: read-out " << least << " : 1\n";
}

// Colours given to one look only, the wrong one, or to none.
TEST (Panel, ShowsItsControlsInTheirColours)
{
    EditorRig rig (openFull);
    std::map<juce::String, DrawnText> shown;

    for (const auto& text : textsOf (*rig.editor))
        shown[text.text] = text;

    EXPECT_EQ (shown.at ("+6").colour, juce::Colour (numberColour));
    EXPECT_EQ (shown.count ("12"), 1u);
    EXPECT_EQ (shown.count ("On"), 1u);
    EXPECT_EQ (shown.count ("Single"), 1u);
    EXPECT_FLOAT_EQ (shown.at ("12").height, 40.0f);
    EXPECT_FLOAT_EQ (shown.at ("Single").height, 48.0f * 0.4f);

    auto& knob = rig.control ("pitchInertiaSlider");
    EXPECT_GT (boundsOf (pictureOf (knob), [] (juce::Colour c) { return c == juce::Colours::white; }).getHeight(), 15);
}

// Text that outgrows its frame is cut or squeezed by the framework without a word.
TEST (Panel, TextsFitTheirControlsAtEverySize)
{
    for (const auto height : { 258, 288, 400, 576 })
    {
        EditorRig rig (
            [=] (EditorRig& r)
            {
                r.set (parameterId::toggleSize, 1.0f);
                r.set (parameterId::mainRange, 5.0f);
                r.processor.uiHeight = height;
            });

        for (const auto& [id, text] : { std::pair { "pitchRangeBox", "48" }, std::pair { "pitchSnapButton", "On" },
                                        std::pair { "midiModeButton", "Single" } })
        {
            auto& control = rig.control (id);
            const auto texts = textsOf (control);
            ASSERT_EQ (texts.size(), 1u) << id << " at " << height;
            EXPECT_EQ (texts[0].text, text) << id << " at " << height;
            EXPECT_GE (texts[0].left, 1.0f) << id << " at " << height;
            EXPECT_LE (texts[0].right, static_cast<float> (control.getWidth()) - 1.0f) << id << " at " << height;
        }
    }
}

// A knob's read-out with dots instead of decimals.
TEST (Panel, ReadOutShowsAllItsCharacters)
{
    EditorRig rig;
    for (const auto value : { 0.88, 1.0 })
    {
        rig.slider ("mixerSlider").setValue (0.0, juce::sendNotificationSync);
        rig.slider ("mixerSlider").setValue (value, juce::sendNotificationSync);
        EXPECT_EQ (wordsOf (rig.readOut()), std::vector<juce::String> { juce::String (value, 2) });
    }
}
} // namespace
} // namespace tarvelline::test
