// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/InstructionSets.h"
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"
#include "tests/support/VectorCase.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <tuple>

namespace tarvelline::test
{
namespace
{
/** A case and the processor that plays it; a new one for every play. */
struct Player
{
    explicit Player (const std::string& name) : golden (VectorCase::load (TARVELLINE_GOLDEN_DIR, name)) {}

    VectorRun play (int splitLength = 0)
    {
        rig = std::make_unique<ProcessorRig> (golden.rate, golden.channels);
        auto& processor = rig->processor;
        VectorTarget target;
        target.setParameter = [&] (const std::string& id, float value)
        { rig->parameter (id.c_str()).setValueNotifyingHost (value); };
        target.prepare = [&] (double rate, int block) { processor.prepareToPlay (rate, block); };
        target.process = [&] (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi, bool bypassed)
        {
            if (bypassed)
                processor.processBlockBypassed (buffer, midi);
            else
                processor.processBlock (buffer, midi);
        };
        target.motion = [&]
        {
            auto& wheel = processor.mainWheel;
            return MotionRow { 0, wheel.target, wheel.follower, wheel.point, wheel.velocity };
        };
        return golden.play (target, splitLength);
    }

    VectorCase golden;
    std::unique_ptr<ProcessorRig> rig;
};

/** A case, and the instruction set that it is played on. */
class Golden : public testing::TestWithParam<std::tuple<const char*, std::string>>
{
protected:
    const char* name = std::get<0> (GetParam());
    OnInstructionSet set { std::get<1> (GetParam()) };
};

// Any change of the sound: a constant, a floor, a truncation, the order of two steps, somewhere between MIDI and mix. The
// expected data come from another program, so an error of thought on our side does not cancel out.
TEST_P (Golden, SoundsMovesAndSavesAsExpected)
{
    Player player (name);
    auto& golden = player.golden;
    const auto run = player.play();
    const auto agreement = compareAudio (run.output, golden.expected, golden.channels, golden.rate);
    const auto motionError = largestMotionError (run.motion, golden.motion);

    std::printf ("%s: overall %.1f dB, worst piece %.1f dB at sample %d, median %.1f dB, motion %.2g, "
                 "first difference above 1e-4 at sample %d\n",
                 name, agreement.overallDb, agreement.worstPieceDb, agreement.worstPieceStart,
                 agreement.medianPieceDb, motionError, agreement.firstDifference);

    EXPECT_GE (agreement.overallDb, 75.0);
    EXPECT_GE (agreement.worstPieceDb, 50.0) << "from sample " << agreement.worstPieceStart;
    EXPECT_GE (agreement.medianPieceDb, 95.0);

    ASSERT_GE (motionError, 0.0) << "no block ends on a row of the motion table";
    EXPECT_LE (motionError, 1.0e-9);

    juce::MemoryBlock state;
    player.rig->processor.getStateInformation (state);
    EXPECT_EQ (state, golden.state); // the same bytes: envelope, order of the attributes, decimals
}

class GoldenInOtherBlocks : public testing::TestWithParam<const char*>
{
};

// A block's end that leaks into the sound, in material with every kind of event; and a wheel that moves by blocks, since
// blocks of 512 show every row of the motion table.
TEST_P (GoldenInOtherBlocks, SoundsTheSame)
{
    Player player (GetParam());
    const auto scripted = player.play();

    for (const auto splitLength : { 37, 512, 4096 })
    {
        SCOPED_TRACE (splitLength);
        const auto run = player.play (splitLength);
        EXPECT_TRUE (sameBits (run.output, scripted.output));

        if (splitLength == 512)
        {
            EXPECT_EQ (run.motion.size(), player.golden.motion.size());
            EXPECT_LE (largestMotionError (run.motion, player.golden.motion), 1.0e-9);
        }
    }
}

const auto caseName = [] (const auto& row) { return std::string (row.param); };

INSTANTIATE_TEST_SUITE_P (Cases, Golden,
                          testing::Combine (testing::Values ("wheel_up_seven", "voice_timbre", "three_voices",
                                                             "bend_and_notes", "rate_96k"),
                                            testing::ValuesIn (instructionSets())),
                          [] (const auto& row)
                          { return std::get<0> (row.param) + ("_" + std::get<1> (row.param)); });

// Not bend_and_notes: a bend is heard from the next block on, which ties the sound to the script's blocks.
INSTANTIATE_TEST_SUITE_P (Cases, GoldenInOtherBlocks,
                          testing::Values ("wheel_up_seven", "voice_timbre", "three_voices", "rate_96k"), caseName);
} // namespace
} // namespace tarvelline::test
