// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"
#include "widgets/MainRotaryDraw.h"
#include "widgets/RotaryDisplayTick.h"
#include "widgets/RotaryTick.h"
#include "widgets/SnapSlider.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarvelline::test
{
namespace
{
constexpr auto pi = juce::MathConstants<float>::pi;
constexpr auto startAngle = 1.2f * pi, sweep = 1.6f * pi; // the framework's rotary travel: 7 o'clock to 5 o'clock

/** A slider as the editor sets it up, showing one of the looks. */
template <typename Look>
struct Rotary
{
    Rotary (int width, int height, double value)
    {
        slider.setSliderStyle (juce::Slider::RotaryHorizontalVerticalDrag);
        slider.setTextBoxStyle (juce::Slider::NoTextBox, false, 0, 0);
        slider.setRange (0.0, 1.0);
        slider.setValue (value);
        slider.setLookAndFeel (&look);
        slider.setSize (width, height);
    }

    ~Rotary() { slider.setLookAndFeel (nullptr); }

    juce::Image picture() { return pictureOf (slider); }
    juce::Point<float> centre() const { return slider.getLocalBounds().toFloat().getCentre(); }

    Polar centreOf (const PixelTest& passes)
    {
        return polarFrom (centre(), test::centreOf (picture(), slider.getLocalBounds(), passes));
    }

    Look look;
    SnapSlider slider;
};

class AtValue : public testing::TestWithParam<float>
{
protected:
    float angle() const { return startAngle + GetParam() * sweep; }
};

INSTANTIATE_TEST_SUITE_P (Table, AtValue, testing::Values (0.0f, 0.2f, 0.5f, 0.75f, 1.0f));

// A puck that turns the wrong way, stays upright on its way round, or leaves the circle.
TEST_P (AtValue, PuckIsOnItsCircleAndPointsOutward)
{
    Rotary<MainRotaryDraw> wheel (356, 356, static_cast<double> (GetParam()));
    const auto body = wheel.centreOf (isInk);
    const auto bar = wheel.centreOf (isOrange);

    EXPECT_NEAR (angleBetween (body.angle, angle()), 0.0f, 0.01f);
    EXPECT_NEAR (body.radius, 0.416f * 356.0f, 3.0f); // the drop is heavier at its round end: 1.9 pixels inward
    EXPECT_NEAR (angleBetween (bar.angle, angle()), 0.0f, 0.02f);
    EXPECT_GT (bar.radius, body.radius + 5.0f);
}

struct PuckCase
{
    int width, height;
    float radius, scale; // of the path in pixels, of the picture
};

class PuckSize : public testing::TestWithParam<PuckCase>
{
};

// The picture scaled with the height, or the path with the width.
TEST_P (PuckSize, PictureFollowsTheWidthAndPathTheSmallerSide)
{
    const auto [width, height, radius, scale] = GetParam();
    constexpr auto right = 0.5 + 0.5 / 1.6; // a quarter turn from the top: there is room in a flat slider
    Rotary<MainRotaryDraw> wheel (width, height, right);
    const auto bounds = boundsOf (wheel.picture(), [] (juce::Colour c) { return c.getAlpha() > 8; }).toFloat();

    Rotary<MainRotaryDraw> natural (356, 356, right);
    const auto naturalBounds = boundsOf (natural.picture(), [] (juce::Colour c) { return c.getAlpha() > 8; }).toFloat();

    EXPECT_NEAR (bounds.getWidth(), naturalBounds.getWidth() * scale, 2.0f);
    EXPECT_NEAR (bounds.getHeight(), naturalBounds.getHeight() * scale, 2.0f);
    EXPECT_NEAR (wheel.centreOf (isInk).radius, radius, 3.0f * scale);
}

INSTANTIATE_TEST_SUITE_P (Table, PuckSize,
                          testing::Values (PuckCase { 178, 178, 74.0f, 0.5f }, PuckCase { 712, 712, 296.2f, 2.0f },
                                           PuckCase { 356, 178, 74.0f, 1.0f }, PuckCase { 178, 356, 74.0f, 0.5f }));

// A bar as long as the knob, one that starts at the centre, or one that is turned by a right angle.
TEST_P (AtValue, PointerBarLiesAlongItsAngle)
{
    constexpr auto size = 400;
    Rotary<RotaryTick> knob (size, size, static_cast<double> (GetParam()));
    knob.look.setColour (juce::Slider::thumbColourId, juce::Colours::white);
    const auto bar = knob.centreOf (isWhite);

    EXPECT_NEAR (angleBetween (bar.angle, angle()), 0.0f, 0.005f);
    EXPECT_NEAR (bar.radius, 0.325f * size, 0.5f);

    const auto widthAt = [&, picture = knob.picture()] (float radius)
    { return litRuns (picture, knob.centre(), radius * size, angle() + pi, 2.0f * pi, isWhite).size(); };

    EXPECT_EQ (widthAt (0.195f), 0u);
    EXPECT_EQ (widthAt (0.205f), 1u);
    EXPECT_EQ (widthAt (0.445f), 1u);
    EXPECT_EQ (widthAt (0.455f), 0u);
}

TEST (PointerBar, IsATwentiethOfTheKnobThick)
{
    Rotary<RotaryTick> knob (400, 400, 0.5);
    EXPECT_EQ (boundsOf (knob.picture(), isInk), juce::Rectangle<int> (190, 20, 20, 100));
}

struct ScaleCase
{
    int steps;
    size_t ticks, longTicks;
    std::vector<juce::String> numbers;
};

void PrintTo (const ScaleCase& scale, std::ostream* out) { *out << scale.steps << " steps"; }

class Scale : public testing::TestWithParam<ScaleCase>
{
protected:
    static constexpr auto size = 860;

    Scale()
    {
        scale.slider.snapTo = GetParam().steps;
        scale.look.setColour (juce::Slider::thumbColourId, juce::Colours::black);
        scale.look.setColour (juce::Slider::textBoxHighlightColourId, juce::Colours::white);
    }

    std::vector<float> runsAt (float radius)
    {
        return litRuns (scale.picture(), scale.centre(), radius * size, startAngle - 0.1f, sweep + 0.2f, isInk);
    }

    Rotary<RotaryDisplayTick> scale { size, size, 0.3 };
};

// The last tick lost to rounding, a long tick off its step, or lengths mixed up.
TEST_P (Scale, HasFiveTicksAStepAndEveryFifthIsLong)
{
    scale.look.setColour (juce::Slider::textBoxHighlightColourId, juce::Colours::transparentBlack);
    const auto [steps, ticks, longTicks, numbers] = GetParam();

    EXPECT_EQ (runsAt (0.39f).size(), 0u);
    EXPECT_EQ (runsAt (0.40f).size(), longTicks);
    EXPECT_EQ (runsAt (0.43f).size(), ticks);
    EXPECT_EQ (runsAt (0.4625f).size(), ticks - longTicks); // the short ones reach a little further out
    EXPECT_EQ (runsAt (0.47f).size(), 0u);

    const auto middles = runsAt (0.43f), longMiddles = runsAt (0.40f);
    for (size_t i = 0; i < middles.size(); ++i)
        ASSERT_NEAR (middles[i], startAngle + sweep * static_cast<float> (i) / static_cast<float> (ticks - 1), 0.002f);

    for (size_t i = 0; i < longMiddles.size(); ++i)
        ASSERT_NEAR (longMiddles[i], middles[i * 5], 0.002f);
}

// "+0", "-12.0", "+0.5", a crowded scale with every number on it, or one that begins with the second number.
TEST_P (Scale, NumbersItsSteps) { EXPECT_EQ (wordsOf (scale.slider), GetParam().numbers); }

// Numbers off their ticks or of another size; the plus sign must not push the digits aside.
TEST_P (Scale, NumbersStandOnTheirTicks)
{
    const auto first = static_cast<float> (GetParam().steps) / -2.0f;

    for (const auto& text : textsOf (scale.slider))
    {
        const auto value = text.text.getFloatValue();
        const auto angle = startAngle + sweep * (value - first) / static_cast<float> (GetParam().steps);
        const auto tick = scale.centre().getPointOnCircumference (0.46f * size, angle);
        const auto shift = value >= 1.0f ? 0.01f * size : 0.0f;

        EXPECT_NEAR ((text.left + text.right) / 2.0f, tick.x - shift, 1.0f) << text.text;
        EXPECT_NEAR (text.baseline, tick.y + 0.35f * text.height, 0.12f * text.height) << text.text;
        EXPECT_NEAR (text.height, 0.0425f * size, 0.01f);
        EXPECT_EQ (text.colour, juce::Colours::white);
    }
}

std::vector<juce::String> integers (int last, int stride)
{
    std::vector<juce::String> result;

    for (auto number = -last; number <= last; number += stride)
        result.push_back ((number > 0 ? "+" : "") + juce::String (number));

    return result;
}

INSTANTIATE_TEST_SUITE_P (Table, Scale,
                          testing::Values (ScaleCase { 2, 11, 3, { "-1", "0", "+1" } },
                                           ScaleCase { 5, 26, 6, { "-2.5", "-1.5", "-0.5", "0.5", "+1.5", "+2.5" } },
                                           ScaleCase { 24, 121, 25, integers (12, 1) },
                                           ScaleCase { 48, 241, 49, integers (24, 2) }),
                          [] (const auto& scale) { return "Steps" + std::to_string (scale.param.steps); });
} // namespace
} // namespace tarvelline::test
