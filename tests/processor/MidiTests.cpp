// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <tuple>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

/** A processor that is playing, in voice mode or transposing. */
struct MidiRig : ProcessorRig
{
    explicit MidiRig (bool transpose, double sampleRate = 44100.0) : ProcessorRig (sampleRate)
    {
        set (midiOptions, transpose ? 1.0f : 0.0f);
        prepare();
    }

    void bend (int value) { midi.addEvent (juce::MidiMessage::pitchWheel (16, value), 0); }

    void note (int number, bool on)
    {
        const auto note = static_cast<juce::uint8> (number);
        send ({ static_cast<juce::uint8> (on ? 0x92 : 0x86), note, 1 });
        playBlock (1);
    }

    bool lit (int number) { return processor.voices.keyLit[static_cast<std::size_t> (number - lowestKeyNote)] != 0; }

    VoiceSlots& slots = processor.voices.slots;
};

// Rounding where a bend truncates, a division by 16384, quantisation while Shift is held, or a bend that the host and the
// listeners are told of (a feedback loop with a host's automation).
TEST (PitchBend, SetsTheWheelWithoutTellingAnyone)
{
    MidiRig rig (true);
    const HostEar host (rig.processor);

    for (const auto& [steps, value, position, shiftHeld] : { std::tuple { 0.0, 8192, 0.500031, false },
                                                             { 0.0, 0, 0.0, false },
                                                             { 0.0, 16383, 1.0, false },
                                                             { 12.0, 12000, 0.666667, false },
                                                             { 12.0, 4000, 0.25, false },
                                                             { 12.0, 16383, 1.0, false },
                                                             { 12.0, 12000, 0.732467, true },
                                                             { 48.0, 8192 + 170, 0.5, false },
                                                             { 48.0, 8192 + 400, 0.520833, false } })
    {
        rig.processor.bendSteps = steps;
        juce::ModifierKeys::currentModifiers = shiftHeld ? juce::ModifierKeys::shiftModifier : 0;
        rig.bend (value);
        rig.playBlock (64);
        juce::ModifierKeys::currentModifiers = 0;
        EXPECT_NEAR (rig.get (mainWheelPar), position, 1.0e-6) << steps << ", " << value;
    }

    EXPECT_TRUE (host.changedParameters.empty());
}

// One event a sample, and one after the last: a flood costs no time, and what does not fit is dropped, not kept.
TEST (MidiFlood, HandlesOneEventASampleAndOneMore)
{
    for (const auto samples : { 0, 1, 4, 64 })
    {
        MidiRig rig (true);

        for (int i = 0; i < 32; ++i)
            rig.midi.addEvent (juce::MidiMessage::pitchWheel (1, 100 * (i + 1)), i / 8);

        const auto last = 100.0 * std::min (samples + 1, 32) / 16383.0;
        rig.playBlock (samples);
        EXPECT_NEAR (rig.get (mainWheelPar), last, 1.0e-6) << samples;
        rig.playBlock (64);
        EXPECT_NEAR (rig.get (mainWheelPar), last, 1.0e-6) << "a dropped event came back";
    }
}

// Messages of another kind, cut off, or absent, and bytes past the end that are read all the same.
TEST (MidiMessages, OfOtherKindsChangeNothing)
{
    MidiRig rig (false);
    rig.processor.voices.keysChanged = false;

    for (const auto& bytes : std::vector<std::vector<juce::uint8>> {
             { 0xb0, 1, 100 }, { 0xa0, 60, 100 }, { 0x90, 60 }, { 0xe0 }, { 0xf0, 0x90, 60, 100, 0xf7 }, {} })
        rig.processor.handleMidiEvent (bytes.data(), static_cast<int> (bytes.size()));

    EXPECT_EQ (rig.get (mainWheelPar), 0.5f);
    EXPECT_FALSE (rig.processor.voices.keysChanged);
}

// Keys that stay lit, light outside the strip, or whose change the editor misses.
TEST (Keys, LightWhileTheirNoteIsHeld)
{
    MidiRig rig (false);
    auto& voices = rig.processor.voices;

    for (const auto note : { 36, 60, 84, 35, 85, 0, 127 })
        for (const auto on : { true, false })
        {
            voices.keysChanged = false;
            rig.note (note, on);
            EXPECT_TRUE (voices.keysChanged);
            const auto onStrip = note >= 36 && note <= 84;
            const auto& keys = voices.keyLit;
            const auto count = std::count_if (keys.begin(), keys.end(), [] (auto& lit) { return lit != 0; });
            EXPECT_EQ (count, onStrip && on ? 1 : 0) << note;
            EXPECT_TRUE (count == 0 || rig.lit (note));
        }
}

// In transpose mode a key that stays lit when the next note takes its place, or a transposition that ends with its note.
TEST (Keys, ShowTheLastNoteThatTransposed)
{
    MidiRig rig (true);
    rig.note (60, true);
    rig.note (64, true);
    EXPECT_FALSE (rig.lit (60));
    EXPECT_TRUE (rig.lit (64));
    rig.note (64, false);
    EXPECT_FALSE (rig.lit (64));
    EXPECT_EQ (rig.processor.mainWheel.midiOffset, 4.0);
}

// A ninth note that steals a voice, a slot that is not given back, a repeated note that starts a second voice of the same
// pitch, or one that interrupts its own fade with a click.
TEST (Voices, AreEightAndNoneIsStolenOrRestarted)
{
    MidiRig rig (false);

    for (int i = 0; i < 9; ++i)
        rig.note (30 + i, true); // from below the keyboard strip on

    for (int i = 0; i < 8; ++i)
        EXPECT_EQ (rig.slots[static_cast<std::size_t> (i)].semitones, static_cast<float> (30 + i - 60));

    rig.playBlock (6000); // latency and fade-in are over
    rig.note (37, false);
    rig.playBlock (3000); // the last slot is free again
    rig.note (31, false);
    rig.playBlock (1000);
    const auto fading = rig.slots[1].level;
    rig.note (31, true);
    rig.note (32, true);
    EXPECT_LT (rig.slots[1].level, fading);
    EXPECT_EQ (rig.slots[2].level, 1.0f);
    EXPECT_FALSE (rig.slots[7].active);

    rig.playBlock (3000);
    EXPECT_FALSE (rig.slots[1].active);
    rig.note (90, true);
    EXPECT_EQ (rig.slots[1].semitones, 30.0f) << "the lowest free slot";
}

// A fade counted in samples, or one that does not wait for the latency.
TEST (Voices, FadeInAFifteenthOfASecond)
{
    for (const auto rate : { 44100.0, 96000.0, 192000.0 })
    {
        MidiRig rig (false, rate);
        const auto half = static_cast<int> (rate / 30.0);
        rig.note (60, true);
        rig.playBlock (rig.processor.getLatencySamples() + half);
        EXPECT_NEAR (rig.slots[0].level, 0.5, 1.0e-3) << rate;
        rig.playBlock (2 * half);
        EXPECT_EQ (rig.slots[0].level, 1.0f) << rate;
        rig.note (60, false);
        rig.playBlock (half);
        EXPECT_NEAR (rig.slots[0].level, 0.5, 1.0e-3) << rate;
    }
}
} // namespace
} // namespace tarvelline::test
