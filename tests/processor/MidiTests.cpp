// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"
#include "tests/support/ProcessorRig.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

/** A processor that is playing, in voice mode or transposing. */
struct MidiRig : ProcessorRig
{
    explicit MidiRig (bool transpose = true, double sampleRate = 44100.0) : ProcessorRig (sampleRate)
    {
        set (midiOptions, transpose ? 1.0f : 0.0f);
        prepare();
    }

    void bend (int value) { midi.addEvent (juce::MidiMessage::pitchWheel (16, value), 0); }

    void note (int number, bool on)
    {
        midi.addEvent (
            on ? juce::MidiMessage::noteOn (3, number, juce::uint8 { 1 }) : juce::MidiMessage::noteOff (7, number), 0);
        playBlock (1);
    }

    VoiceSlots& slots() { return processor.voices.slots; }
    bool lit (int number) { return processor.voices.keyLit[static_cast<std::size_t> (number - 36)] != 0; }
};

struct Bend
{
    double steps;
    int value; // 14 bits
    double position;
    bool shiftHeld = false;
};

class PitchBend : public testing::TestWithParam<Bend>
{
};

// Rounding where a bend truncates, a division by 16384, quantisation while Shift is held, or a bend that the host and the
// listeners are told of (a feedback loop with a host's automation).
TEST_P (PitchBend, SetsTheWheelWithoutTellingAnyone)
{
    const auto [steps, value, position, shiftHeld] = GetParam();
    MidiRig rig;
    rig.processor.bendSteps = steps;
    rig.set (mainWheelPar, 0.1f);
    const HostEar host (rig.processor);
    const auto keysBefore = juce::ModifierKeys::currentModifiers;
    juce::ModifierKeys::currentModifiers = shiftHeld ? juce::ModifierKeys::shiftModifier : 0;
    rig.bend (value);
    rig.playBlock (64);
    juce::ModifierKeys::currentModifiers = keysBefore;

    EXPECT_NEAR (rig.get (mainWheelPar), position, 1.0e-6);
    EXPECT_TRUE (host.changedParameters.empty());
}

INSTANTIATE_TEST_SUITE_P (Values, PitchBend,
                          testing::Values (Bend { 0, 8192, 0.500031 }, Bend { 0, 0, 0.0 }, Bend { 0, 16383, 1.0 },
                                           Bend { 12, 8192, 0.5 }, Bend { 12, 12000, 0.666667 },
                                           Bend { 12, 4000, 0.25 }, Bend { 12, 0, 0.0 }, Bend { 12, 16383, 1.0 },
                                           Bend { 12, 12000, 0.732467, true }, Bend { 12, 4000, 0.244156, true },
                                           Bend { 48, 8192 + 170, 0.5 }, Bend { 48, 8192 + 400, 0.520833 }));

// A bend read through the tree's copy of the parameter is never heard; one read within its own block is heard too early.
TEST (PitchBendTiming, IsHeardFromTheNextBlockOn)
{
    MidiRig rig;
    rig.bend (16383);
    rig.playBlock (64);
    EXPECT_EQ (rig.processor.mainWheel.point, 0.5);
    rig.playBlock (64);
    EXPECT_GT (rig.processor.mainWheel.point, 0.5);
}

// One event a sample, and one after the last: a flood costs no time, and what does not fit is dropped, not kept.
TEST (MidiFlood, HandlesOneEventASampleAndOneMore)
{
    for (const auto samples : { 0, 1, 4, 64 })
    {
        MidiRig rig;

        for (int i = 0; i < 32; ++i)
            rig.midi.addEvent (juce::MidiMessage::pitchWheel (1, 100 * (i + 1)), i / 8);

        rig.playBlock (samples);
        const auto last = std::min (samples + 1, 32);
        EXPECT_NEAR (rig.get (mainWheelPar), 100.0 * last / 16383.0, 1.0e-6) << samples;
        EXPECT_TRUE (rig.midi.isEmpty());
        rig.playBlock (64);
        EXPECT_NEAR (rig.get (mainWheelPar), 100.0 * last / 16383.0, 1.0e-6) << "a dropped event came back";
    }
}

// Messages that are none of the three, cut off, or absent, and bytes past the end that are read all the same.
TEST (MidiMessages, OfOtherKindsChangeNothing)
{
    const std::vector<std::vector<juce::uint8>> others {
        { 0xb0, 1, 100 },
        { 0xc0, 60 },
        { 0xd0, 127 },
        { 0xa0, 60, 100 },
        { 0xf8 },
        { 0x90, 60 },
        { 0x90 },
        { 0xe0, 127 },
        { 0xf0, 0x90, 60, 100, 0xf7 },
        {},
    };

    for (const auto transpose : { true, false })
    {
        MidiRig rig (transpose);

        for (auto& bytes : others)
            rig.processor.handleMidiEvent (bytes.data(), static_cast<int> (bytes.size()));

        EXPECT_EQ (rig.get (mainWheelPar), 0.5f);
        EXPECT_FALSE (rig.processor.voices.keysChanged);
        EXPECT_FALSE (rig.slots()[0].active);
    }
}

// A transposition that ends with its note, or a note-off sent as a note-on without velocity that transposes.
TEST (Transpose, StaysWithTheLastNote)
{
    MidiRig rig;

    for (const auto& [note, offset] :
         { std::pair { 60, 0.0 }, { 72, 12.0 }, { 48, -12.0 }, { 20, -40.0 }, { 127, 67.0 } })
    {
        rig.note (note, true);
        EXPECT_EQ (rig.processor.mainWheel.midiOffset, offset);
        EXPECT_EQ (rig.processor.lastNoteOffset, static_cast<float> (offset));
        EXPECT_EQ (rig.processor.timbWheel.midiOffset, 0.0);
        rig.note (note, false);
        rig.send ({ 0x90, 50, 0 });
        rig.playBlock (1);
        EXPECT_EQ (rig.processor.mainWheel.midiOffset, offset);
    }
}

// A note in transpose mode starts its slot afresh, also when it is the same note.
TEST (Transpose, RetriggersSlotZero)
{
    MidiRig rig;
    rig.note (60, true);
    const auto first = rig.slots()[0].level;
    rig.slots()[0].level = 1.0f;
    rig.note (60, true);
    EXPECT_EQ (rig.slots()[0].level, first);
    EXPECT_FLOAT_EQ (first, -2048.0f * 15.0f / 44100.0f);
}

// Keys that stay lit, light outside the strip, or whose change the editor misses.
TEST (Keys, LightWhileTheirNoteIsHeld)
{
    MidiRig rig (false);

    for (const auto note : { 36, 60, 84, 35, 85, 0, 127 })
    {
        const auto onStrip = note >= 36 && note <= 84;
        rig.processor.voices.keysChanged = false;
        rig.note (note, true);
        EXPECT_TRUE (rig.processor.voices.keysChanged);
        auto& keys = rig.processor.voices.keyLit;
        EXPECT_EQ (std::count_if (keys.begin(), keys.end(), [] (auto& lit) { return lit != 0; }), onStrip ? 1 : 0);
        EXPECT_TRUE (! onStrip || rig.lit (note));
        rig.processor.voices.keysChanged = false;
        rig.note (note, false);
        EXPECT_TRUE (rig.processor.voices.keysChanged);
        EXPECT_TRUE (! onStrip || ! rig.lit (note));
    }

    MidiRig transposing;
    transposing.note (60, true);
    transposing.note (64, true);
    EXPECT_FALSE (transposing.lit (60)) << "the next note takes the last one's place";
    EXPECT_TRUE (transposing.lit (64));
    transposing.note (100, true);
    EXPECT_FALSE (transposing.lit (64));
}

// A ninth note that steals a voice, or a slot that is not given back.
TEST (Voices, AreEightAndNoneIsStolen)
{
    MidiRig rig (false);

    for (int i = 0; i < 9; ++i)
        rig.note (30 + i, true); // from below the keyboard strip on

    for (int i = 0; i < 8; ++i)
    {
        auto& slot = rig.slots()[static_cast<std::size_t> (i)];
        EXPECT_TRUE (slot.active);
        EXPECT_EQ (slot.index, i);
        EXPECT_EQ (slot.key, 30 + i - 36);
        EXPECT_EQ (slot.semitones, static_cast<float> (30 + i - 60));
    }

    rig.note (33, false);
    rig.note (31, false);
    rig.playBlock (3000);
    EXPECT_FALSE (rig.slots()[1].active);
    rig.note (90, true);
    EXPECT_EQ (rig.slots()[1].key, 90 - 36) << "the lowest free slot";
    EXPECT_FALSE (rig.slots()[3].active);
}

// A repeated note that starts a second voice of the same pitch, or one that interrupts its own fade with a click.
TEST (Voices, IgnoreANoteThatStillSounds)
{
    MidiRig rig (false);
    rig.note (60, true);
    rig.playBlock (6000); // latency and fade-in are over
    ASSERT_EQ (rig.slots()[0].level, 1.0f);

    rig.note (60, true);
    EXPECT_EQ (rig.slots()[0].level, 1.0f);
    EXPECT_FALSE (rig.slots()[1].active);

    rig.note (60, false);
    rig.playBlock (1000);
    const auto fading = rig.slots()[0].level;
    rig.note (60, true);
    EXPECT_LT (rig.slots()[0].level, fading);
    EXPECT_FALSE (rig.slots()[1].active);

    rig.playBlock (3000);
    ASSERT_FALSE (rig.slots()[0].active);
    rig.note (60, true);
    EXPECT_TRUE (rig.slots()[0].active);
}

// A voice that is heard before its first processed samples arrive (a burst of the slot's last note), late, or that fades
// with the block instead of the second.
TEST (Voices, WaitOutTheLatencyAndFadeInAFifteenthOfASecond)
{
    for (const auto& [rate, n] : { std::pair { 44100.0, 2048 }, { 96000.0, 4096 }, { 192000.0, 8192 } })
    {
        SCOPED_TRACE (rate);
        const auto fade = static_cast<int> (rate / 15.0);
        MidiRig rig (false, rate);
        rig.play (whiteNoise (n));
        rig.send ({ 0x90, 60, 100 });
        const auto output = rig.play (whiteNoise (2 * n + 2 * fade));

        // Measured: 2046, 4095 and 8192; the level is a sum in single precision.
        EXPECT_NEAR (static_cast<double> (onsetIndex (output, 0.0f)), n, 4.0);
        EXPECT_EQ (rig.slots()[0].level, 1.0f);
        EXPECT_EQ (rig.slots()[0].rate, 0.0f);

        const auto rms = [&] (int at)
        { return levelDb (std::span (output).subspan (static_cast<std::size_t> (n + at), 400)); };
        EXPECT_LT (rms (0), rms (fade + 200) - 15.0) << "no fade-in";

        rig.send ({ 0x80, 60, 0 });
        const auto ending = rig.play (whiteNoise (2 * fade));
        const auto lastHeard = std::find_if (ending.rbegin(), ending.rend(), [] (float s) { return s != 0.0f; });
        EXPECT_NEAR (static_cast<double> (ending.rend() - lastHeard), fade, 4.0);
        EXPECT_FALSE (rig.slots()[0].active);
        EXPECT_EQ (rig.slots()[0].level, 0.0f);
    }
}

// Voices at wrong intervals, or a wheel that moves only some of them.
TEST (Voices, SoundTheirIntervalsFromMiddleCWithTheWheelOnTop)
{
    MidiRig rig (false);
    rig.set (mainWheelPar, 0.75f); // up three
    rig.prepare();
    rig.send ({ 0x90, 57, 100 });
    rig.send ({ 0x90, 72, 100 });
    const auto output = rig.play (sine (440.0, rig.rate, 1.5, 0.2));
    const auto steady = std::span (output).last (32768);
    EXPECT_NEAR (componentDb (steady, 440.0, rig.rate), -13.6, 0.3);                 // 57 + 3: none
    EXPECT_NEAR (componentDb (steady, 440.0 * 256.0 / 107.0, rig.rate), -15.2, 0.3); // 72 + 3, in whole hops
}
} // namespace
} // namespace tarvelline::test
