// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

struct Expected
{
    const char *id, *name;
    float rangeEnd, defaultValue;
};

// What sessions and automation lanes of every host rely on; written out a second time on purpose.
constexpr Expected expectedParameters[] = {
    { "mainRange", "Pitch Range", 5, 3 },
    { "timbRange", "Timbre Range", 5, 3 },
    { "mainWheelPar", "Pitch", 1, 0.5f },
    { "mainGravityPar", "Pitch Gravity", 1, 0.5f },
    { "mainInertiaPar", "Pitch Inertia", 1, 0.5f },
    { "mainSmoothPar", "Pitch Smooth", 1, 0 },
    { "mainSnap", "Pitch Snap", 1, 1 },
    { "timbWheelPar", "Timbre", 1, 0.5f },
    { "timbGravityPar", "Timbre Gravity", 1, 0.5f },
    { "timbInertiaPar", "Timbre Inertia", 1, 0.5f },
    { "timbSmoothPar", "Timbre Smooth", 1, 0 },
    { "timbSnap", "Timbre Snap", 1, 1 },
    { "mixerPar", "Mixer", 1, 1 },
    { "toggleSize", "Toggle Size", 1, 0 },
    { "midiOptions", "Toggle MIDI", 1, 1 },
};

// A reordered, renamed or re-ranged parameter: it breaks every saved project without a warning.
TEST (Parameters, AreFifteenContinuousFloatsInOrder)
{
    ProcessorRig rig;
    auto& list = rig.processor.getParameters();
    ASSERT_EQ (list.size(), 15);

    for (int i = 0; i < 15; ++i)
    {
        const auto& expected = expectedParameters[i];
        SCOPED_TRACE (expected.id);
        auto* parameter = dynamic_cast<juce::RangedAudioParameter*> (list[i]);
        ASSERT_NE (parameter, nullptr);
        EXPECT_EQ (parameter->paramID, expected.id);
        EXPECT_EQ (parameter->getName (100), expected.name);
        EXPECT_EQ (parameter->getNormalisableRange().start, 0.0f);
        EXPECT_EQ (parameter->getNormalisableRange().end, expected.rangeEnd);
        EXPECT_EQ (parameter->getNormalisableRange().interval, 0.0f);
        EXPECT_EQ (parameter->getNormalisableRange().skew, 1.0f);
        EXPECT_EQ (parameter->convertFrom0to1 (parameter->getValue()), expected.defaultValue);
        EXPECT_NE (dynamic_cast<juce::AudioParameterFloat*> (list[i]), nullptr);
        EXPECT_EQ (parameter->convertFrom0to1 (parameter->getDefaultValue()), expected.defaultValue);
        EXPECT_TRUE (parameter->getLabel().isEmpty());
        EXPECT_TRUE (parameter->isAutomatable());
        EXPECT_EQ (parameter->getValueForText (parameter->getText (0.5f, 0)), 0.5f);
    }

    EXPECT_EQ (rig.processor.parameters.state.getType().toString(), "Tarvelline_0");
}

// Rounding where a selector truncates, or an index outside the table.
TEST (Parameters, RangeSelectorsTruncateIntoTheTable)
{
    struct Row
    {
        float selector;
        double span;
    };

    for (const auto& [selector, span] : { Row { 0.0f, 2.0 }, Row { 0.99f, 2.0 }, Row { 1.0f, 4.0 }, Row { 2.5f, 6.0 },
                                          Row { 3.0f, 12.0 }, Row { 4.99f, 24.0 }, Row { 5.0f, 48.0 } })
    {
        SCOPED_TRACE (selector);
        ProcessorRig early, late; // the one takes the span from the refresh, the other from the listener
        early.set (mainRange, selector);
        early.set (timbRange, selector);
        early.prepare();
        late.prepare();
        late.set (mainRange, selector);
        late.set (timbRange, selector);

        for (auto* rig : { &early, &late })
        {
            EXPECT_EQ (rig->processor.mainWheel.span, span);
            EXPECT_EQ (rig->processor.timbWheel.span, span);
            EXPECT_EQ (rig->processor.mainWheel.inverseSpan, 1.0 / span);
        }
    }

    EXPECT_EQ (spanForRange (std::nanf ("")), 2.0);
    EXPECT_EQ (spanForRange (-1.0f), 2.0);
    EXPECT_EQ (spanForRange (6.0f), 48.0);
}

struct Wheel
{
    const char *range, *position;
    WheelRecord TarvellineAudioProcessor::*record;
};

class RangeChange : public testing::TestWithParam<Wheel>
{
};

// A span change that is heard: the wheel must move so that its shift in semitones stays, as far as its travel allows; the
// host and the listeners must learn of the move; and the motion must not glide there.
TEST_P (RangeChange, KeepsTheSoundingShift)
{
    struct Row
    {
        float selector, position;
        double shift; // semitones
    };

    for (const auto& [selector, position, shift] :
         { Row { 5.0f, 0.5625f, 3.0 }, Row { 4.99f, 0.625f, 3.0 }, Row { 2.0f, 1.0f, 3.0 }, Row { 0.0f, 1.0f, 1.0 } })
    {
        SCOPED_TRACE (selector);
        const auto wheel = GetParam();
        ProcessorRig rig;
        rig.set (wheel.position, 0.75f); // of 12 semitones: up three
        rig.prepare();
        const HostEar host (rig.processor);
        rig.set (wheel.range, selector);

        EXPECT_FLOAT_EQ (rig.get (wheel.position), position);
        EXPECT_THAT (host.changedParameters,
                     testing::UnorderedElementsAre (rig.parameter (wheel.range).getParameterIndex(),
                                                    rig.parameter (wheel.position).getParameterIndex()));
        auto& record = rig.processor.*wheel.record;
        EXPECT_NEAR ((record.point - 0.5) * record.span, shift, 1.0e-6);
        rig.playBlock (512);
        EXPECT_NEAR ((record.point - 0.5) * record.span, shift, 1.0e-6) << "the wheel still moves";
    }
}

// A listener that reads the tree's copy of the wheel: it does not know a bend, which is stored plainly.
TEST_P (RangeChange, StartsFromAPlainlyStoredPosition)
{
    const auto wheel = GetParam();
    ProcessorRig rig;
    rig.prepare();
    rig.parameter (wheel.position).setValue (0.75f);
    rig.set (wheel.range, 5.0f);
    EXPECT_FLOAT_EQ (rig.get (wheel.position), 0.5625f);
}

// A range chosen before the first prepare: there is no old span to keep a shift by.
TEST_P (RangeChange, BeforePreparationLeavesThePosition)
{
    const auto wheel = GetParam();
    ProcessorRig rig;
    rig.set (wheel.position, 0.75f);
    rig.set (wheel.range, 4.0f);
    EXPECT_FLOAT_EQ (rig.get (wheel.position), 0.75f);
    rig.prepare();
    EXPECT_DOUBLE_EQ ((rig.processor.*wheel.record).point, 0.75);
}

// The last note's offset is added by the choice of the span and again by the rest that follows it.
TEST (Parameters, RangeChangeAddsTheTranspositionTwice)
{
    ProcessorRig rig;
    rig.prepare();
    rig.processor.handleMidiEvent (std::array<juce::uint8, 3> { 0x90, 63, 100 }.data(), 3);
    rig.set (mainRange, 4.0f); // 24 semitones: three of them are an eighth
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.target, 0.5 + 2 * 0.125);
    EXPECT_DOUBLE_EQ (rig.processor.mainWheel.point, rig.processor.mainWheel.target);
}

INSTANTIATE_TEST_SUITE_P (Wheels, RangeChange,
                          testing::Values (Wheel { mainRange, mainWheelPar, &TarvellineAudioProcessor::mainWheel },
                                           Wheel { timbRange, timbWheelPar, &TarvellineAudioProcessor::timbWheel }),
                          [] (const auto& row) { return std::string (row.param.position); });
} // namespace
} // namespace tarvelline::test
