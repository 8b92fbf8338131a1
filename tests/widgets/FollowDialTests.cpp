// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include "BinaryData.h"

namespace tarvelline::test
{
namespace
{
struct DialRig
{
    DialRig()
    {
        wheel.timeScale = 1.0;
        dial.follow (wheel, {});
        dial.setSize (222, 222);
    }

    WheelRecord wheel;
    FollowDial dial;
};

/** What the dial's own timer does every 20 ms, without the wait. */
void tick (FollowDial& dial, int times = 1)
{
    for (auto i = 0; i < times; ++i)
        ((juce::Timer&) dial).timerCallback(); // a private base, which only this form of cast reaches
}

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
        DialRig rig;
        rig.wheel.point = point;
        rig.wheel.span = span;
        tick (rig.dial);
        const auto number = textsOf (rig.dial).at (0);
        EXPECT_EQ (number.text, text);
        EXPECT_TRUE (number.typeface.startsWith ("Sci Fied 2002")); // Windows adds its style
        EXPECT_EQ (number.colour, juce::Colour (0xfff5f5f5).withAlpha (0.4f));
    }
}

// A ring enlarged on a fine screen, or resampled twice: at double size the picture for it is copied as it is.
TEST (FollowDial, IsAsSharpAsAFineScreen)
{
    const auto picture =
        juce::ImageFileFormat::loadFrom (BinaryData::followWheel2x_png, BinaryData::followWheel2x_pngSize);
    const juce::Rectangle<int> aboveTheNumber (444, 160);
    DialRig rig;
    EXPECT_EQ (differingPixels (pictureOf (rig.dial, 2.0f).getClippedImage (aboveTheNumber),
                                picture.getClippedImage (aboveTheNumber), 2),
               0);
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
        auto& dial = rig.control<FollowDial> ("pitchDial");
        const auto opacity = [&]
        {
            const auto texts = textsOf (dial);
            return texts.size() == 2 ? texts[1].colour.getFloatAlpha() : 0.0f;
        };

        tick (dial, 500);
        EXPECT_EQ (opacity(), 0.0f) << "10 s: the number alone";
        tick (dial);
        const auto line = textsOf (dial).at (1);
        EXPECT_EQ (line.text, text);
        EXPECT_NEAR (line.height, 223.0f * 0.0625f, 0.01f);
        EXPECT_GT (line.baseline, 111.0f + line.height);

        for (const auto& [ticks, expected] :
             { std::pair { 0, 0.6f }, { 269, 0.6f }, { 15, 0.3f }, { 15, 0.0f }, { 600, 0.0f } })
        {
            tick (dial, ticks);
            EXPECT_NEAR (opacity(), expected, 0.005f) << ticks << " ticks later";
        }
    }
}
} // namespace
} // namespace tarvelline::test
