// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

// Anything that is done once a block instead of once a sample, and state that is lost or counted twice at a block's edge;
// also a block larger than the 512 samples that were announced.
TEST (BlockSplit, GivesTheSameBits)
{
    for (const auto transpose : { 1.0f, 0.0f })
    {
        const auto playIn = [transpose] (int blockSize)
        {
            ProcessorRig rig;
            rig.set (midiOptions, transpose);
            rig.set (toggleSize, 1.0f);
            rig.prepare();
            rig.set (mainWheelPar, 0.9f);
            rig.set (timbWheelPar, 0.3f);
            rig.set (mixerPar, 0.8f);
            rig.processor.outputGain = 0.0f;
            rig.send ({ 0x90, 67, 100 });
            return rig.play (whiteNoise (30000), blockSize);
        };
        const auto expected = playIn (1000);

        for (const auto size : { 1, 64, 441, 512, 4096, 30000 })
            EXPECT_TRUE (sameBits (playIn (size), expected))
                << size << (transpose > 0.0f ? ", transposing" : ", voices");
    }
}

// A master fade counted in blocks, or one that overshoots full scale.
TEST (OutputGain, RisesOverAFifthOfASecond)
{
    for (const auto rate : { 44100.0, 192000.0 })
    {
        ProcessorRig rig (rate);
        rig.set (mixerPar, 0.0f);
        rig.prepare();
        rig.play (Samples (8192, 1.0f));
        rig.processor.outputGain = 0.0f;
        const auto fade = static_cast<int> (rate / 5.0);
        const auto output = rig.play (Samples (static_cast<std::size_t> (fade + 100), 1.0f));

        for (int i = 0; i < fade + 100; ++i)
            ASSERT_NEAR (output[static_cast<std::size_t> (i)], std::min (1.0, (i + 1.0) / fade), 2.0e-4) << i;

        EXPECT_EQ (output.back(), 1.0f);
    }
}

// The timbre wheel that keeps swinging after it went out of use; or one that is stopped when it comes into use.
TEST (ToggleSize, PutsTheTimbreWheelToRestWhenItGoesOff)
{
    ProcessorRig rig;
    rig.prepare();
    rig.set (timbWheelPar, 0.9f);
    auto& wheel = rig.processor.timbWheel;

    for (const auto inUse : { 0.3f, 0.0f })
    {
        rig.playBlock (100);
        ASSERT_NE (wheel.point, wheel.target);
        rig.set (toggleSize, inUse);
        rig.playBlock (0);
        EXPECT_EQ (wheel.point == wheel.target, inUse == 0.0f);
    }
}

// A value or a sample that is not a number must be gone when its cause is: from wheels, fades, phases and rings.
TEST (BadInput, DoesNotStick)
{
    constexpr auto nan = std::numeric_limits<float>::quiet_NaN(), infinity = std::numeric_limits<float>::infinity();
    const auto expectUpThree = [] (const Samples& output)
    { EXPECT_NEAR (centsBetween (440.0, frequencyHz (Signal (output).last (32768), 44100.0)), upThreeCents, 0.05); };

    for (const auto bad : { nan, infinity, -infinity, 3.0e38f })
    {
        ProcessorRig rig;
        rig.set (toggleSize, 1.0f);
        rig.set (mainWheelPar, 0.75f);
        rig.prepare();
        auto input = sine (440.0, 44100.0, 2.0, 0.5);
        input[5000] = bad;
        const auto output = rig.play (input);
        ASSERT_TRUE (allFinite (Signal (output).subspan (50000))) << bad;
        expectUpThree (output);
    }

    ProcessorRig rig;
    rig.prepare();
    rig.set (mainWheelPar, 0.75f);

    for (auto* parameter : rig.processor.getParameters())
    {
        const auto good = parameter->getValue();
        parameter->setValueNotifyingHost (nan);
        EXPECT_TRUE (allFinite (rig.play (whiteNoise (5000)))) << parameter->getName (100);
        parameter->setValueNotifyingHost (good);
    }

    rig.play (silence (44100));
    rig.set (mainRange, 3.0f);
    rig.set (mainWheelPar, 0.75f);
    expectUpThree (rig.play (sine (440.0, 44100.0, 2.0, 0.5)));
}

// Silence after sound that gets slow, and a floating-point mode that is left behind in the host's thread.
TEST (Denormals, AreFlushedDuringABlockOnly)
{
    ProcessorRig rig;
    rig.set (mainWheelPar, 0.25f);
    rig.prepare();
    auto input = whiteNoise (20000);
    input.resize (80000, 1.0e-39f);
    EXPECT_TRUE (noneSubnormal (rig.play (input)));
    EXPECT_FALSE (juce::FloatVectorOperations::areDenormalsDisabled());
}
} // namespace
} // namespace tarvelline::test
