// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"
#include "tests/support/VectorCase.h"

#include <gtest/gtest.h>

#include <array>

namespace tarvelline::test
{
namespace
{
class Golden : public testing::TestWithParam<const char*>
{
};

// Any change of the sound: a constant, a floor, a truncation, the order of two steps, somewhere between MIDI and mix. The
// expected data come from another program, so an error of thought on our side does not cancel out.
TEST_P (Golden, SoundsMovesAndSavesAsExpected)
{
    const VectorCase golden (GetParam());
    ProcessorRig rig (golden.rate, golden.channels);
    auto& wheel = rig.processor.mainWheel;
    auto rowsSeen = 0;

    const auto compareMotion = [&] (int played)
    {
        const auto row = golden.motion.find (played - 1);

        if (row == golden.motion.end())
            return;

        const std::array<double, 4> actual { wheel.target, wheel.follower, wheel.point, wheel.velocity };
        ++rowsSeen;

        for (std::size_t i = 0; i < 4; ++i)
            ASSERT_NEAR (actual[i], row->second[i], 1.0e-9) << "field " << i << " after sample " << row->first;
    };

    golden.expectSound (rig.processor, compareMotion);
    EXPECT_GT (rowsSeen, 10) << "too few blocks end on a row of the motion table";

    juce::MemoryBlock state;
    rig.processor.getStateInformation (state);
    EXPECT_EQ (state, golden.state); // the same bytes: envelope, order of the attributes, decimals
}

INSTANTIATE_TEST_SUITE_P (Cases, Golden,
                          testing::Values ("wheel_up_seven", "voice_timbre", "three_voices", "bend_and_notes",
                                           "rate_96k"),
                          [] (const auto& row) { return std::string (row.param); });
} // namespace
} // namespace tarvelline::test
