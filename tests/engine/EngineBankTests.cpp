// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineBank.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvelline::test
{
namespace
{
constexpr FrameControls voicing { .pitchSemitones = 2.0f, .transposeMode = false };

/** A bank at a sample rate with its voice slots, played in mono. */
struct Rig
{
    explicit Rig (float rate = 44100.0f)
    {
        bank.setSampleRate (rate);
        bank.rebuildEngines();

        for (int i = 0; i < voiceCount; ++i)
            slots[static_cast<std::size_t> (i)].index = i;
    }

    void start (std::size_t slot, float semitones, float level = 1.0f)
    {
        slots[slot] = {
            .active = true, .index = static_cast<int> (slot), .started = true, .level = level, .semitones = semitones
        };
    }

    Samples play (const FrameControls& controls, Signal input)
    {
        Samples output (input.size());

        for (std::size_t i = 0; i < input.size(); ++i)
            bank.processFrame (controls, slots, &input[i], &output[i], 1);

        return output;
    }

    EngineBank bank;
    VoiceSlots slots;
};

float ratioOf (float semitones) { return std::exp (semitones * 0.05776231f); }

/** What one engine alone makes of the input. */
Samples playEngine (float pitchRatio, float formantRatio, Signal input)
{
    PitchShiftEngine engine;
    engine.prepare (2048, 1.0f, 44100.0f);
    engine.setRatios (pitchRatio, formantRatio);
    Samples output (input.size());

    for (std::size_t i = 0; i < input.size(); ++i)
        engine.processFrame (&input[i], &output[i], 1);

    return output;
}

Samples material()
{
    return mix (harmonicTone (220.0, 44100.0, 0.3, 20, 0.3), clickTrain (lengthOf (0.3, 44100.0), 4000));
}
} // namespace

// Catches a voice that takes another's engine, gain or shift, that misses the wheel, or whose start is not acknowledged.
TEST (EngineBank, VoiceModeAddsTheActiveVoicesAtTheirLevels)
{
    Rig rig;
    rig.start (1, 4.0f, 0.5f);
    rig.start (6, -9.0f, 1.0f);
    rig.slots[0].started = true; // not active
    const auto input = material(), actual = rig.play (voicing, input);

    auto expected = playEngine (ratioOf (4.0f + 2.0f), 1.0f, input);
    const auto second = playEngine (ratioOf (-9.0f + 2.0f), 1.0f, input);

    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = expected[i] * 0.5f + second[i];

    EXPECT_TRUE (sameBits (actual, expected));
    EXPECT_FALSE (rig.slots[1].started);
    EXPECT_FALSE (rig.slots[6].started);
    EXPECT_TRUE (rig.slots[0].started);
}

// Catches engines that run or are cleared while their voice is off: a note that returns takes up where the slot stopped.
TEST (EngineBank, AnInactiveVoicesEngineStandsStill)
{
    Rig rig;
    rig.start (0, 5.0f);
    rig.start (1, 0.0f);
    const auto input = material(), noise = whiteNoise (9999);
    rig.play (voicing, Signal (input).first (5000));

    rig.slots[0].active = false;
    rig.play (voicing, noise);
    rig.slots[0].active = true;
    rig.slots[1].active = false;

    const auto resumed = rig.play (voicing, Signal (input).subspan (5000)),
               expected = playEngine (ratioOf (7.0f), 1.0f, input);
    EXPECT_TRUE (sameBits (resumed, Signal (expected).subspan (5000)));
}

// The envelope is to land at the timbre shift wherever the pitch goes. Catches an inverted ratio, and a voice's own shift that
// moves its envelope. Equal shifts make the ratio exactly 1, and so the plain sound.
TEST (EngineBank, FormantRatioIsPitchOverTimbre)
{
    const auto input = material();

    for (const auto transposeMode : { true, false })
        for (const auto timbre : { 3.0f, 5.0f })
        {
            Rig rig;
            rig.start (0, transposeMode ? 0.0f : 7.0f);
            const FrameControls controls { 5.0f, timbre, transposeMode, true };
            const auto pitch = rig.slots[0].semitones + 5.0f, envelope = rig.slots[0].semitones + timbre;
            const auto formantRatio = timbre == 5.0f ? 1.0f : ratioOf (pitch) / ratioOf (envelope);
            EXPECT_TRUE (sameBits (rig.play (controls, input), playEngine (ratioOf (pitch), formantRatio, input)))
                << transposeMode << ' ' << timbre;
        }
}

} // namespace tarvelline::test
