// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/InstructionSets.h"
#include "tests/support/ProcessorRig.h"
#include "tests/support/VectorCase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <tuple>

namespace tarvelline::test
{
namespace
{
/** A case, and the instruction set that it is played on. */
class Golden : public testing::TestWithParam<std::tuple<const char*, std::string>>
{
protected:
    OnInstructionSet held { std::get<1> (GetParam()) };
};

// Any change of the sound: a constant, a floor, a truncation, the order of two steps, somewhere between MIDI and mix. The
// expected data come from another program, so an error of thought on our side does not cancel out.
TEST_P (Golden, SoundsMovesAndSavesAsExpected)
{
    const VectorCase golden (std::get<0> (GetParam()));
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
    auto expected = golden.state;
    const auto before = expected.getSize(), end = before - 3;         // of the attributes: "/>" and a zero byte follow
    const auto younger = std::max (state.getSize(), before) - before; // parameters, whose attributes come last
    expected.insert (state.begin() + end, younger, end);
    const auto length = juce::ByteOrder::swapIfBigEndian (static_cast<juce::uint32> (expected.getSize() - 9));
    expected.copyFrom (&length, 4, sizeof (length));
    EXPECT_EQ (state, expected); // the same bytes: envelope, order of the attributes, decimals
}

INSTANTIATE_TEST_SUITE_P (Cases, Golden,
                          testing::Combine (testing::Values ("wheel_up_seven", "voice_timbre", "three_voices",
                                                             "bend_and_notes", "rate_96k"),
                                            testing::ValuesIn (instructionSets())),
                          [] (const auto& row) { return std::get<0> (row.param) + ("_" + std::get<1> (row.param)); });
} // namespace
} // namespace tarvelline::test
