// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SnapSlider.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarvelline::test
{
namespace
{
// Rounding to the nearest step instead of leaning to the centre, a grid that starts at 0 and so misses the centre, a line that
// a float holds just inside itself taken for the one before, or Shift that does not free the drag.
TEST (Snap, LeansToTheCentreUnlessShiftIsHeld)
{
    for (const auto& [snapTo, attempted, snapped] : { std::tuple { 4.0, 0.80, 0.75 },
                                                      { 4.0, 0.70, 0.5 },
                                                      { 4.0, 0.30, 0.5 },
                                                      { 4.0, 0.20, 0.25 },
                                                      { 4.0, 1.0, 1.0 },
                                                      { 48.0, 0.999, 0.5 + 23.0 / 48.0 },
                                                      { 5.0, 0.01, 0.1 },
                                                      { 0.0, 0.37, 0.37 },
                                                      { 12.0, 0.58333331, 0.5 + 1.0 / 12.0 },
                                                      { 12.0, 0.08333334, 0.5 - 5.0 / 12.0 } })
    {
        SnapSlider slider;
        slider.snapTo = snapTo;
        EXPECT_NEAR (slider.snapValue (attempted, juce::Slider::absoluteDrag), snapped, 1.0e-12);

        juce::ModifierKeys::currentModifiers = juce::ModifierKeys (juce::ModifierKeys::shiftModifier);
        EXPECT_EQ (slider.snapValue (attempted, juce::Slider::absoluteDrag), attempted);
        juce::ModifierKeys::currentModifiers = {};
    }
}

// A touchpad whose hundred small parts of a notch are a hundred steps, or none; a fast flick of an ordinary wheel that says more
// than one.
TEST (Snap, AddsSmoothScrollingUpToNotches)
{
    SnapSlider slider;
    slider.setRange (0.0, 1.0);
    slider.setValue (0.5);
    const juce::MouseEvent over (juce::Desktop::getInstance().getMainMouseSource(), {}, {}, 0, 0, 0, 0, 0, &slider,
                                 &slider, {}, {}, {}, 0, false);
    const auto scroll = [&] (float x, float y, bool reversed, bool smooth)
    {
        slider.mouseWheelMove (over, { x, y, reversed, smooth, false });
        return juce::roundToInt ((slider.getValue() - 0.5) / slider.freeStep);
    };

    for (const auto down : { 0, 0, 0, 1 }) // a fourth of a notch each
        EXPECT_EQ (scroll (0.0f, -12.5f / 256.0f, false, true), -down);

    for (const auto steps : { -1, -1, -1, 0, 0, 0, 0, 1, 1, 1, 1, 2 })
        EXPECT_EQ (scroll (0.0f, 12.5f / 256.0f, false, true), steps);

    EXPECT_EQ (scroll (0.0f, 40.0f / 256.0f, false, true), 2);
    EXPECT_EQ (scroll (0.0f, -40.0f / 256.0f, false, true), 2);
    EXPECT_EQ (scroll (0.0f, -20.0f / 256.0f, false, true), 1)
        << "what was short of a notch the other way is forgotten";
    EXPECT_EQ (scroll (0.0f, 2.0f, false, false), 2);
    EXPECT_EQ (scroll (0.0f, 2.0f, true, false), 1);
    EXPECT_EQ (scroll (-0.2f, 0.1f, false, false), 2) << "the greater axis counts";
}
} // namespace
} // namespace tarvelline::test
