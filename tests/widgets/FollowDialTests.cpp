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
using Words = std::vector<juce::String>;

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

    /** Where the ring's index mark is, from the centre. */
    juce::Point<float> mark()
    {
        const auto area = dial.getLocalBounds();
        return centreOf (pictureOf (dial), area, isOrange) - area.toFloat().getCentre();
    }

    ProcessorRig rig;
    FollowDial dial;
};

// The wheel's value instead of its moving point, semitones from one end instead of the centre, a trimmed number.
TEST (FollowDial, ShowsTheShiftAndTurnsWithIt)
{
    struct Case
    {
        double point, span;
        const char* text;
        float angle;
    };
    constexpr Case cases[] = { { 0.5, 24.0, "0.00", 0.0f },       { 0.5, 2.0, "0.00", 0.0f },
                               { 1.0, 48.0, "24.00", 0.8f * pi }, { 0.0, 2.0, "-1.00", -0.8f * pi },
                               { 0.75, 6.0, "1.50", 0.4f * pi },  { 0.21, 12.0, "-3.48", -0.464f * pi } };

    for (const auto& [point, span, text, angle] : cases)
    {
        DialRig rig;
        rig.show (point, span);
        EXPECT_EQ (wordsOf (rig.dial), Words { text });
        EXPECT_NEAR (polarFrom ({}, rig.mark()).angle, angle, 0.01f) << text;
    }
}

// Before the first preparation the record has no span and a meaningless point.
TEST (FollowDial, RestsAtTheCentreUntilTheWheelHasASpan)
{
    DialRig rig;
    rig.tick();
    EXPECT_EQ (wordsOf (rig.dial), Words { "0.00" });
    EXPECT_NEAR (polarFrom ({}, rig.mark()).angle, 0.0f, 0.01f);
}

TEST (FollowDial, FollowsTheWheelItWasGiven)
{
    DialRig timbre (1);
    timbre.rig.processor.timbWheel.span = 24.0;
    timbre.rig.processor.timbWheel.point = 0.25;
    timbre.show (1.0, 48.0);
    EXPECT_EQ (wordsOf (timbre.dial), Words { "-6.00" });
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
    EXPECT_EQ (number.colour, juce::Colour (0xfff5f5f5).withAlpha (0.4f));
}

class InfoLine : public testing::TestWithParam<std::pair<juce::AudioProcessor::WrapperType, const char*>>
{
protected:
    InfoLine() { juce::AudioProcessor::setTypeOfNextNewPlugin (GetParam().first); }
    ~InfoLine() override { juce::AudioProcessor::setTypeOfNextNewPlugin (juce::AudioProcessor::wrapperType_Undefined); }
};

// A line that comes back, flashes at once, or names another format.
TEST_P (InfoLine, ShowsFromTenSecondsForSixAndFades)
{
    DialRig rig;
    const auto lines = [&] { return textsOf (rig.dial).size(); };
    const auto opacity = [&] { return textsOf (rig.dial).at (1).colour.getFloatAlpha(); };

    rig.tick (500);
    EXPECT_EQ (lines(), 1u) << "10 s: the number alone";
    rig.tick();
    const auto line = textsOf (rig.dial).at (1);
    EXPECT_EQ (line.text, GetParam().second);
    EXPECT_NEAR (line.height, 222.0f * 0.0625f, 0.01f);
    EXPECT_GT (line.baseline, 111.0f + line.height);
    EXPECT_NEAR (opacity(), 0.6f, 0.005f);

    rig.tick (269);
    EXPECT_NEAR (opacity(), 0.6f, 0.005f) << "0.6 s before the end";
    rig.tick (15);
    EXPECT_NEAR (opacity(), 0.3f, 0.005f);
    rig.tick (14);
    EXPECT_EQ (lines(), 2u);
    rig.tick();
    EXPECT_EQ (lines(), 1u) << "16 s";
    rig.tick (600);
    EXPECT_EQ (lines(), 1u) << "only once";
}

// The blank that stands for a missing format name cannot be seen.
INSTANTIATE_TEST_SUITE_P (Formats, InfoLine,
                          testing::Values (std::pair { juce::AudioProcessor::wrapperType_VST3, "VST3 64 bit  v.5.0.2" },
                                           std::pair { juce::AudioProcessor::wrapperType_LV2, "64 bit  v.5.0.2" }));
} // namespace
} // namespace tarvelline::test
