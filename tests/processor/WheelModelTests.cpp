// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <tuple>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

class WheelAtRate : public testing::TestWithParam<double>
{
protected:
    WheelAtRate() { wheel.timeScale = t; }

    const double t = static_cast<double> (static_cast<float> (44100.0 / GetParam()));
    WheelRecord wheel;
};

// A power, a floor or a limit of the shaping that is off, or a rate that is not taken into account. Numbers by hand.
TEST_P (WheelAtRate, ShapesItsSettings)
{
    for (const auto& [amount, acceleration, pull, slew] : { std::array { 0.0, 5.0e-10, 8.0e-6, 1.6e-3 },
                                                            { 0.5, 5.5e-9, 1.33e-4, 6.89883056640625e-6 },
                                                            { 1.0, 1.05e-8, 4.0e-3, 8.1e-7 } })
    {
        setInertia (wheel, amount);
        setGravity (wheel, amount);
        setSmooth (wheel, amount);
        EXPECT_NEAR (wheel.acceleration, acceleration * t, 1.0e-22);
        EXPECT_NEAR (wheel.pull, pull * t, 1.0e-17);
        EXPECT_NEAR (wheel.slewStep, slew * t, 1.0e-16);
    }

    wheel.timeScale = 441.0; // a rate so low that the point would be pulled past its target and swing out of all bounds
    setGravity (wheel, 1.0);
    EXPECT_EQ (wheel.pull, 1.0);
}

INSTANTIATE_TEST_SUITE_P (Rates, WheelAtRate, testing::Values (44100.0, 88200.0, 192000.0),
                          [] (const auto& row) { return std::to_string (static_cast<int> (row.param)); });

struct Wheel
{
    const char *range, *position;
    WheelRecord TarvellineAudioProcessor::*record;
};

class RangeChange : public testing::TestWithParam<Wheel>
{
};

// A span change that is heard: the wheel must move so that its shift in semitones stays, as far as its travel allows; the
// host and the listeners must learn of the move; the motion must not glide there; and a selector between two spans stands
// for the lower one.
TEST_P (RangeChange, KeepsTheSoundingShift)
{
    const auto wheel = GetParam();

    for (const auto& [selector, position, semitones] :
         { std::tuple { 5.0f, 0.625f, 6.0 }, { 3.99f, 1.0f, 6.0 }, { 2.0f, 1.0f, 3.0 }, { 0.0f, 1.0f, 1.0 } })
    {
        SCOPED_TRACE (selector);
        ProcessorRig rig;
        auto& record = rig.processor.*wheel.record;
        rig.parameter (wheel.position).setValue (0.75f); // as a bend stores it, without telling the tree's copy
        rig.set (wheel.range, 4.0f);                     // 24 semitones
        EXPECT_EQ (rig.get (wheel.position), 0.75f) << "there was no span yet to keep a shift by";
        rig.prepare();
        const HostEar host (rig.processor);
        rig.set (wheel.range, selector);

        EXPECT_FLOAT_EQ (rig.get (wheel.position), position);
        EXPECT_THAT (host.changedParameters,
                     testing::UnorderedElementsAre (rig.parameter (wheel.range).getParameterIndex(),
                                                    rig.parameter (wheel.position).getParameterIndex()));
        EXPECT_NEAR ((record.point - 0.5) * record.span, semitones, 1.0e-6);
        rig.playBlock (512);
        EXPECT_NEAR ((record.point - 0.5) * record.span, semitones, 1.0e-6) << "the wheel still moves";
    }
}

INSTANTIATE_TEST_SUITE_P (Wheels, RangeChange,
                          testing::Values (Wheel { mainRange, mainWheelPar, &TarvellineAudioProcessor::mainWheel },
                                           Wheel { timbRange, timbWheelPar, &TarvellineAudioProcessor::timbWheel }),
                          [] (const auto& row) { return std::string (row.param.position); });

// The last note's transposition is added anew by every rest of the main wheel: three times in a prepare (span chosen,
// refresh, end), twice in a change of the range.
TEST (Wheel, AddsTheTranspositionAtEveryRest)
{
    ProcessorRig rig;
    rig.prepare();
    rig.send ({ 0x90, 63, 100 }); // three semitones are a quarter of the span of 12
    rig.playBlock (1);
    rig.prepare();
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.point, 0.5 + 3 * 0.25);
    EXPECT_DOUBLE_EQ (rig.processor.timbWheel.point, 0.5);

    rig.set (mainRange, 4.0f); // and an eighth of 24
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.target, 0.5 + 3 * 0.125 + 2 * 0.125);
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.point, rig.processor.mainWheel.target);
}

/** A host's audio thread, which plays block after block as wrappers do: under the lock, and not while it is told to pause. */
class AudioThread
{
public:
    explicit AudioThread (ProcessorRig& r) : rig (r) {}
    ~AudioThread()
    {
        ended = true;
        thread.join();
    }

    void waitForBlocks (int count) const
    {
        for (const auto end = blocks + count; blocks < end;)
            std::this_thread::yield();
    }

private:
    void run()
    {
        for (; ! ended; ++blocks)
        {
            const juce::ScopedLock lock (rig.processor.getCallbackLock());

            if (! rig.processor.isSuspended())
                rig.playBlock (64);
        }
    }

    ProcessorRig& rig;
    std::atomic<bool> ended { false };
    std::atomic<int> blocks { 0 };
    std::thread thread { [this] { run(); } };
};

// A wheel that a restore has put somewhere, and that the audio thread then puts back to where its own copy was.
TEST (Wheel, StaysWhereARestoreHasPutItWhileAudioRuns)
{
    ProcessorRig rig;
    std::array<juce::MemoryBlock, 2> states;

    for (const auto upper : { 0u, 1u })
    {
        rig.set (mainRange, upper ? 4.0f : 1.0f);
        rig.set (mainWheelPar, upper ? 0.75f : 0.125f);
        rig.set (mainGravityPar, 0.0f);
        rig.processor.getStateInformation (states[upper]);
    }

    rig.prepare();
    const AudioThread audio (rig);
    auto lost = 0;

    for (int i = 0; i < 3000; ++i)
    {
        rig.set (mainWheelPar, 0.5f); // off it moves, slowly
        audio.waitForBlocks (1);
        const auto& state = states[static_cast<std::size_t> (i % 2)];
        rig.processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
        audio.waitForBlocks (2);

        // Not equal: a block that had begun with the wheel's old value makes it swing a little. The other place is 0.6 away.
        lost += std::abs (rig.processor.mainWheel.point - rig.get (mainWheelPar)) < 0.05 ? 0 : 1;
    }

    EXPECT_EQ (lost, 0);
}

// Engines that are built anew under a block that runs: a crash within seconds in a host that takes no lock itself.
TEST (Prepare, KeepsBlocksOutWhileItBuilds)
{
    ProcessorRig rig;
    rig.prepare();
    const AudioThread audio (rig);

    for (int i = 0; i < 100; ++i)
    {
        rig.processor.prepareToPlay (i % 2 == 0 ? 96000.0 : 44100.0, 512);
        audio.waitForBlocks (1);
    }

    EXPECT_FALSE (rig.processor.isSuspended());
}
} // namespace
} // namespace tarvelline::test
