// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include "BinaryData.h"

namespace tarvelline::test
{
namespace
{
// The wheel's value instead of its moving point, semitones from one end instead of the centre, a trimmed number, a zero with
// a sign.
TEST (FollowDial, ShowsTheShift)
{
    for (const auto& [point, span, text] : { std::tuple { 0.5, 24.0, "0.00" },
                                             { 1.0, 48.0, "24.00" },
                                             { 0.0, 2.0, "-1.00" },
                                             { 0.21, 12.0, "-3.48" },
                                             { 0.4999, 12.0, "0.00" } })
    {
        EditorRig rig;
        rig.processor.mainWheel.span = span;
        rig.followTo ("pitch", point);
        const auto number = textsOf (rig.control ("pitchDial")).at (0);
        EXPECT_EQ (number.text, text);
        EXPECT_TRUE (number.typeface.startsWith ("Sci Fied 2002")); // Windows adds its style
        EXPECT_EQ (number.colour, juce::Colour (0xfff5f5f5).withAlpha (0.4f));
    }
}

// A ring or a puck enlarged on a fine screen, resampled twice, or off its place in the window. At these sizes the pictures for
// it are copied as they are, the puck's cut at the top.
TEST (Pictures, AreAsSharpAsAFineScreen)
{
    using namespace BinaryData;
    using Area = juce::Rectangle<int>;
    EditorRig rig;

    for (const auto& [id, size, data, bytes, part, place] :
         { std::tuple { "pitchDial", Area (31, 20, 222, 222), followWheel2x_png, followWheel2x_pngSize, Area (444, 160),
                        Area (444, 160) },
           { "mainWheelSlider", Area (31, 20, 356, 250), Puck2x_png, Puck2x_pngSize, Area (0, 17, 110, 101),
             Area (301, 0, 110, 101) } })
    {
        const auto picture = juce::ImageFileFormat::loadFrom (data, static_cast<size_t> (bytes));
        rig.control (id).setBounds (size);
        EXPECT_EQ (differingPixels (pictureOf (rig.control (id), 2.0f).getClippedImage (place),
                                    picture.getClippedImage (part), 2),
                   0)
            << id;
    }
}

// A line that comes back, flashes at once, or names another format. The blank that stands for a missing name cannot be seen.
TEST (InfoLine, ShowsFromTenSecondsForSixAndFades)
{
    using juce::AudioProcessor;

    for (const auto& [format, text] : { std::pair { AudioProcessor::wrapperType_VST3, "VST3 64 bit  v.5.0.2" },
                                        std::pair { AudioProcessor::wrapperType_LV2, "64 bit  v.5.0.2" } })
    {
        AudioProcessor::setTypeOfNextNewPlugin (format);
        EditorRig rig (576);
        AudioProcessor::setTypeOfNextNewPlugin (AudioProcessor::wrapperType_Undefined);
        auto& dial = rig.control ("pitchDial");
        const auto opacity = [&]
        {
            const auto texts = textsOf (dial);
            return texts.size() == 2 ? texts[1].colour.getFloatAlpha() : 0.0f;
        };

        rig.tickDials (500);
        EXPECT_EQ (opacity(), 0.0f) << "10 s: the number alone";
        rig.tickDials();
        EXPECT_EQ (textsOf (dial).at (1).text, text);

        for (const auto& [ticks, expected] :
             { std::pair { 0, 0.6f }, { 269, 0.6f }, { 15, 0.3f }, { 15, 0.0f }, { 600, 0.0f } })
        {
            rig.tickDials (ticks);
            EXPECT_NEAR (opacity(), expected, 0.005f) << ticks << " ticks later";
        }
    }
}
} // namespace
} // namespace tarvelline::test
