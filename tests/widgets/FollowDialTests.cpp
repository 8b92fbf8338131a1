// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"
#include "tests/support/ProcessorRig.h"
#include "widgets/FollowDial.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
constexpr auto pi = juce::MathConstants<float>::pi;

struct DialRig
{
    explicit DialRig (int wheelIndex = 0, int width = 222, int height = 222)
    {
        dial.setUp (rig.processor, wheelIndex);
        dial.setRotaryParameters ({ 1.2f * pi, 2.8f * pi, true });
        dial.setSize (width, height);
    }

    /** What the dial's own timer does every 20 ms, without the wait. */
    void tick (int times = 1)
    {
        for (auto i = 0; i < times; ++i)
            ((juce::Timer&) dial).timerCallback(); // a private base, which only this form of cast reaches
    }

    void show (double point, double span)
    {
        rig.processor.mainWheel.point = point;
        rig.processor.mainWheel.span = span;
        tick();
    }

    /** Where the ring's index mark is. */
    juce::Point<float> mark()
    {
        return centreOf (pictureOf (dial), dial.getLocalBounds(), isOrange)
               - dial.getLocalBounds().toFloat().getCentre();
    }

    ProcessorRig rig;
    FollowDial dial;
};

struct Shown
{
    double point, span;
    const char* text;
    float angle;
};

class DialShows : public testing::TestWithParam<Shown>
{
};

// The wheel's value instead of its moving point, semitones from one end instead of the centre, a trimmed number.
TEST_P (DialShows, TheShiftAndTurnsWithIt)
{
    const auto [point, span, text, angle] = GetParam();
    DialRig rig;
    rig.show (point, span);

    EXPECT_EQ (wordsOf (rig.dial), std::vector<juce::String> { text });
    EXPECT_NEAR (angleBetween (polarFrom ({}, rig.mark()).angle, angle), 0.0f, 0.01f);
}

INSTANTIATE_TEST_SUITE_P (Table, DialShows,
                          testing::Values (Shown { 0.5, 24.0, "0.00", 0.0f }, Shown { 0.5, 2.0, "0.00", 0.0f },
                                           Shown { 1.0, 48.0, "24.00", 0.8f * pi },
                                           Shown { 0.0, 2.0, "-1.00", -0.8f * pi },
                                           Shown { 0.75, 6.0, "1.50", 0.4f * pi },
                                           Shown { 0.21, 12.0, "-3.48", -0.464f * pi }));

// Before the first preparation the record has no span and a meaningless point.
TEST (FollowDial, RestsAtTheCentreUntilTheWheelHasASpan)
{
    DialRig rig;
    rig.tick();
    EXPECT_EQ (wordsOf (rig.dial), std::vector<juce::String> { "0.00" });
    EXPECT_NEAR (polarFrom ({}, rig.mark()).angle, 0.0f, 0.01f);
}

TEST (FollowDial, FollowsTheWheelItWasGiven)
{
    DialRig timbre (1);
    timbre.rig.processor.timbWheel.span = 24.0;
    timbre.rig.processor.timbWheel.point = 0.25;
    timbre.show (1.0, 48.0);
    EXPECT_EQ (wordsOf (timbre.dial), std::vector<juce::String> { "-6.00" });
}

TEST (FollowDial, WritesInTheDisplayFaceInTheMiddle)
{
    DialRig rig (0, 300, 240);
    rig.show (1.0, 12.0);
    const auto number = textsOf (rig.dial).at (0);

    EXPECT_EQ (number.typeface, "Sci Fied 2002");
    EXPECT_NEAR (number.height, 40.0f, 0.01f);
    EXPECT_NEAR ((number.left + number.right) / 2.0f, 150.0f, 1.0f);
    EXPECT_NEAR (number.baseline, 120.0f + 0.35f * 40.0f, 5.0f);
    EXPECT_EQ (number.colour.withAlpha (1.0f), juce::Colour (0xfff5f5f5));
    EXPECT_NEAR (number.colour.getFloatAlpha(), 0.4f, 0.005f);
}

// A ring kept round in a dial that is not, or stretched before it was turned.
TEST (FollowDial, StretchesTheRingOverAWideDial)
{
    DialRig square, wide (0, 444, 222);
    square.show (0.5, 24.0);
    wide.show (0.5, 24.0);
    EXPECT_NEAR (wide.mark().y, square.mark().y, 1.0f);

    constexpr auto quarterTurn = 0.5 + 0.5 / 1.6; // a right angle clockwise
    wide.show (quarterTurn, 24.0);
    EXPECT_NEAR (wide.mark().x, -2.0f * square.mark().y, 2.0f);
    EXPECT_NEAR (wide.mark().y, 0.0f, 1.0f);
}

struct Format
{
    juce::AudioProcessor::WrapperType type;
    const char* line;
};

class InfoLine : public testing::TestWithParam<Format>
{
protected:
    void SetUp() override { juce::AudioProcessor::setTypeOfNextNewPlugin (GetParam().type); }
    void TearDown() override
    {
        juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined);
    }
};

TEST_P (InfoLine, NamesFormatAndVersionFromTenSecondsForSix)
{
    DialRig rig;
    rig.tick (500);
    EXPECT_EQ (wordsOf (rig.dial), std::vector<juce::String> { "0.00" }) << "10 s";

    rig.tick();
    ASSERT_EQ (textsOf (rig.dial).size(), 2u);
    const auto line = textsOf (rig.dial)[1];
    EXPECT_EQ (line.text, GetParam().line);
    EXPECT_NEAR (line.height, 222.0f * 0.0625f, 0.01f);
    EXPECT_NEAR (line.colour.getFloatAlpha(), 0.6f, 0.005f);
    EXPECT_GT (line.baseline, 111.0f + line.height);

    rig.tick (269);
    EXPECT_NEAR (textsOf (rig.dial)[1].colour.getFloatAlpha(), 0.6f, 0.005f) << "still full, 0.6 s before the end";
    rig.tick (15);
    EXPECT_NEAR (textsOf (rig.dial)[1].colour.getFloatAlpha(), 0.3f, 0.005f);
    rig.tick (14);
    EXPECT_EQ (textsOf (rig.dial).size(), 2u);
    rig.tick();
    EXPECT_EQ (textsOf (rig.dial).size(), 1u) << "16 s";
    rig.tick (2000);
    EXPECT_EQ (textsOf (rig.dial).size(), 1u) << "only once";
}

// The blank that stands for a missing format name cannot be seen.
INSTANTIATE_TEST_SUITE_P (Table, InfoLine,
                          testing::Values (Format { juce::AudioProcessor::wrapperType_VST3, "VST3 64 bit  v.5.0.2" },
                                           Format { juce::AudioProcessor::wrapperType_VST, "VST 64 bit  v.5.0.2" },
                                           Format { juce::AudioProcessor::wrapperType_AudioUnit, "AU 64 bit  v.5.0.2" },
                                           Format { juce::AudioProcessor::wrapperType_AAX, "AAX 64 bit  v.5.0.2" },
                                           Format { juce::AudioProcessor::wrapperType_LV2, "64 bit  v.5.0.2" }));
} // namespace
} // namespace tarvelline::test
