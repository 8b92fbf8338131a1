// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SnapSlider.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
// Rounding to the nearest step instead of leaning to the centre, a grid that starts at 0 and so misses the centre, or
// Shift that does not free the drag.
TEST (Snap, LeansToTheCentreUnlessShiftIsHeld)
{
    struct Case
    {
        double snapTo, attempted, snapped;
    };
    constexpr Case cases[] = { { 4.0, 0.80, 0.75 }, { 4.0, 0.70, 0.5 }, { 4.0, 0.30, 0.5 },
                               { 4.0, 0.20, 0.25 }, { 4.0, 1.0, 1.0 },  { 48.0, 0.999, 0.5 + 23.0 / 48.0 },
                               { 5.0, 0.01, 0.1 },  { 0.0, 0.37, 0.37 } };

    for (const auto& [snapTo, attempted, snapped] : cases)
    {
        SnapSlider slider;
        slider.snapTo = snapTo;
        EXPECT_NEAR (slider.snapValue (attempted, juce::Slider::absoluteDrag), snapped, 1.0e-12);

        juce::ModifierKeys::currentModifiers = juce::ModifierKeys (juce::ModifierKeys::shiftModifier);
        EXPECT_EQ (slider.snapValue (attempted, juce::Slider::absoluteDrag), attempted);
        juce::ModifierKeys::currentModifiers = {};
    }
}
} // namespace
} // namespace tarvelline::test
