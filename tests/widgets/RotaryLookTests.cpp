// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"
#include "widgets/MainRotaryDraw.h"
#include "widgets/RotaryDisplayTick.h"
#include "widgets/SnapSlider.h"

#include "BinaryData.h"

#include <gtest/gtest.h>

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
    Rotary (int width, int height, float value)
    {
        slider.setSliderStyle (juce::Slider::RotaryHorizontalVerticalDrag);
        slider.setTextBoxStyle (juce::Slider::NoTextBox, false, 0, 0);
        slider.setRange (0.0, 1.0);
        slider.setValue (static_cast<double> (value));
        slider.setLookAndFeel (&look);
        slider.setSize (width, height);
    }

    ~Rotary() { slider.setLookAndFeel (nullptr); }

    juce::Point<float> centre() const { return slider.getLocalBounds().toFloat().getCentre(); }

    /** Lit runs at a radius, in shares of the width, over the whole circle from below. */
    std::vector<float> runsAt (float radius)
    {
        const auto pixels = radius * static_cast<float> (slider.getWidth());
        return litRuns (pictureOf (slider), centre(), pixels, isInk);
    }

    Look look;
    SnapSlider slider;
};

// A puck enlarged on a fine screen. At this size its picture for it lies on whole pixels, cut at the top.
TEST (Puck, IsAsSharpAsAFineScreen)
{
    const auto picture = juce::ImageFileFormat::loadFrom (BinaryData::Puck2x_png, BinaryData::Puck2x_pngSize);
    Rotary<MainRotaryDraw> wheel (356, 250, 0.5f);
    const auto shown = pictureOf (wheel.slider, 2.0f).getClippedImage ({ 301, 0, 110, 101 });
    EXPECT_EQ (differingPixels (shown, picture.getClippedImage ({ 0, 17, 110, 101 }), 2), 0);
}

std::vector<juce::String> integers (int last, int stride)
{
    std::vector<juce::String> result;

    for (auto number = -last; number <= last; number += stride)
        result.push_back ((number > 0 ? "+" : "") + juce::String (number));

    return result;
}

class Scale : public testing::TestWithParam<std::tuple<int, size_t, size_t, std::vector<juce::String>>>
{
};

INSTANTIATE_TEST_SUITE_P (
    Table, Scale,
    testing::Values (std::tuple { 2, 11u, 3u, std::vector<juce::String> { "-1", "0", "+1" } },
                     std::tuple { 5, 26u, 6u,
                                  std::vector<juce::String> { "-2.5", "-1.5", "-0.5", "0.5", "+1.5", "+2.5" } },
                     std::tuple { 24, 121u, 25u, integers (12, 1) }, std::tuple { 48, 241u, 49u, integers (24, 2) }));

// The last tick lost to rounding, a long tick off its step, or lengths mixed up. "+0", "-12.0", "+0.5", every number on a
// crowded scale, or every second one from the second on. Numbers off their ticks; a plus sign that pushes the digits aside.
TEST_P (Scale, HasFiveTicksAStepOfWhichOneIsLongAndNumbered)
{
    constexpr auto size = 860;
    const auto [steps, ticks, longTicks, numbers] = GetParam();
    Rotary<RotaryDisplayTick> scale (size, size, 0.3f);
    scale.slider.snapTo = steps;
    scale.look.setColour (juce::Slider::thumbColourId, juce::Colours::black);
    scale.look.setColour (juce::Slider::textBoxHighlightColourId, juce::Colours::white);
    EXPECT_EQ (wordsOf (scale.slider), numbers);

    for (const auto& text : textsOf (scale.slider))
    {
        const auto value = text.text.getFloatValue();
        const auto tick =
            scale.centre().getPointOnCircumference (0.46f * size, sweep * value / static_cast<float> (steps));
        EXPECT_NEAR ((text.left + text.right) / 2.0f, tick.x - (value >= 1.0f ? 0.01f * size : 0.0f), 1.0f) << value;
        EXPECT_NEAR (text.baseline, tick.y + 0.35f * text.height, 0.12f * text.height) << value;
        EXPECT_NEAR (text.height, 0.0425f * size, 0.01f);
        EXPECT_EQ (text.colour, juce::Colours::white);
    }

    scale.look.setColour (juce::Slider::textBoxHighlightColourId, juce::Colours::transparentBlack);
    const auto middles = scale.runsAt (0.43f), longMiddles = scale.runsAt (0.40f);
    EXPECT_EQ (scale.runsAt (0.39f).size(), 0u);
    ASSERT_EQ (longMiddles.size(), longTicks);
    ASSERT_EQ (middles.size(), ticks);
    EXPECT_EQ (scale.runsAt (0.4625f).size(), ticks - longTicks); // the short ones reach a little further out
    EXPECT_EQ (scale.runsAt (0.47f).size(), 0u);

    for (size_t i = 0; i < middles.size(); ++i)
        ASSERT_NEAR (middles[i], startAngle + sweep * static_cast<float> (i) / static_cast<float> (ticks - 1), 0.002f);

    for (size_t i = 0; i < longMiddles.size(); ++i)
        ASSERT_NEAR (longMiddles[i], middles[i * 5], 0.002f);
}
} // namespace
} // namespace tarvelline::test
