// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/SnapSlider.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
struct SnapCase
{
    double snapTo, attempted, snapped;
};

class Snap : public testing::TestWithParam<SnapCase>
{
protected:
    void TearDown() override { juce::ModifierKeys::currentModifiers = {}; }

    double snapped()
    {
        SnapSlider slider;
        slider.snapTo = GetParam().snapTo;
        return slider.snapValue (GetParam().attempted, juce::Slider::absoluteDrag);
    }
};

// Rounding to the nearest step instead of leaning to the centre, or a grid that starts at 0 and so misses the centre.
TEST_P (Snap, LeansToTheCentre) { EXPECT_NEAR (snapped(), GetParam().snapped, 1.0e-12); }

TEST_P (Snap, ShiftMovesFreely)
{
    juce::ModifierKeys::currentModifiers = juce::ModifierKeys (juce::ModifierKeys::shiftModifier);
    EXPECT_EQ (snapped(), GetParam().attempted);
}

INSTANTIATE_TEST_SUITE_P (Table, Snap,
                          testing::Values (SnapCase { 4.0, 0.80, 0.75 }, SnapCase { 4.0, 0.70, 0.5 },
                                           SnapCase { 4.0, 0.30, 0.5 }, SnapCase { 4.0, 0.20, 0.25 },
                                           SnapCase { 4.0, 1.0, 1.0 }, SnapCase { 48.0, 0.999, 0.5 + 23.0 / 48.0 },
                                           SnapCase { 5.0, 0.01, 0.1 }, SnapCase { 0.0, 0.37, 0.37 }));
} // namespace
} // namespace tarvelline::test
