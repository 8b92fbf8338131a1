// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineBank.h"
#include "tests/support/Meters.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tarvelline::test
{
namespace
{
/** One channel in runs of 100, with levels that rest. */
void play (EngineBank& bank, float pitch, const float* timbre, VoiceSlots& slots, Signal input, float* output)
{
    constexpr std::size_t runLength = 100;
    const Samples pitches (runLength, pitch), timbres (runLength, timbre != nullptr ? *timbre : 0.0f);

    for (std::size_t start = 0; start < input.size(); start += runLength)
    {
        const auto count = static_cast<int> (std::min (runLength, input.size() - start));
        VoiceLevels levels;

        for (std::size_t slot = 0; slot < slots.size(); ++slot)
        {
            levels.voices[slot].activeSamples = slots[slot].active ? count : 0;
            levels.voices[slot].levels.fill (slots[slot].level);
        }

        const float* const in[] = { input.data() + start };
        float* const out[] = { output + start };
        bank.process ({ pitches.data(), timbres.data(), false, timbre != nullptr, in, out, 1, count }, slots, levels);
    }
}

/** A frame length, and the scale of its frequencies, that go with a sample rate. */
struct Framing
{
    int frameSize;
    float frequencyScale, rate;
};

/** What one engine alone makes of the input, its shift and its envelope's in semitones. */
Samples playEngine (float pitch, float envelope, Signal input, const Framing& framing = { 2048, 1.0f, 44100.0f })
{
    const auto ratioOf = [] (float semitones) { return std::exp (semitones * 0.05776231f); };
    PitchShiftEngine engine;
    engine.prepare (framing.frameSize, framing.frequencyScale, framing.rate);
    const Samples ratios (input.size(), ratioOf (pitch)),
        formantRatios (input.size(), pitch == envelope ? 1.0f : ratioOf (pitch) / ratioOf (envelope));
    Samples output (input.size());
    const float* const in[] = { input.data() };
    float* const out[] = { output.data() };
    engine.process ({ ratios.data(), formantRatios.data(), in, out, 1, static_cast<int> (input.size()) });
    return output;
}
} // namespace

// Catches a limit on the wrong side of its rate, and onsets and bands sought at another rate's frequencies.
TEST (EngineBank, FramesFollowTheSampleRate)
{
    const auto input = material (30000);

    for (const auto& framing : { Framing { 2048, 1.0884354f, 48000.0f },
                                 { 4096, 1.378125f, 88200.0f },
                                 { 8192, 1.8375f, 176400.0f },
                                 { 8192, 2.0f, 192000.0f } })
    {
        EngineBank bank;
        bank.setSampleRate (framing.rate);
        bank.rebuildEngines();
        VoiceSlots slots;
        slots[0] = { .active = true, .index = 0, .level = 1.0f };
        Samples output (input.size());
        play (bank, 3.0f, nullptr, slots, input, output.data());
        EXPECT_GT (signalToDifferenceDb (output, playEngine (3.0f, 3.0f, input, framing)), 100.0) << framing.rate;
    }
}

// Catches a voice that takes another's engine, gain or shift, that misses a wheel, an inverted formant ratio, and
// an engine that runs or is cleared while its voice is off: a note that returns takes up where the slot stopped. And work
// that waits for its engine's turn, which none does in an engine alone, and meets the next frame.
TEST (EngineBank, VoiceModeAddsTheActiveVoicesAtTheirLevels)
{
    const auto input = material (15000), other = whiteNoise (9999);
    constexpr std::size_t pause = 6000;

    for (const auto timbre : { 3.0f, 2.0f }) // 2 is the pitch's shift too, which leaves the envelope as it is
    {
        EngineBank bank;
        bank.setSampleRate (44100.0f);
        bank.rebuildEngines();
        VoiceSlots slots;
        slots[1] = { .active = true, .index = 1, .level = 0.5f, .semitones = 4.0f };
        slots[6] = { .active = true, .index = 6, .level = 1.0f, .semitones = -9.0f };
        Samples output (input.size()), unheard (other.size());
        play (bank, 2.0f, &timbre, slots, Signal (input).first (pause), output.data());

        slots[1].active = slots[6].active = false;
        play (bank, 2.0f, &timbre, slots, other, unheard.data());
        EXPECT_EQ (peak (unheard), 0.0f);
        slots[1].active = slots[6].active = true;
        play (bank, 2.0f, &timbre, slots, Signal (input).subspan (pause), output.data() + pause);

        auto expected = playEngine (4.0f + 2.0f, 4.0f + timbre, input);
        const auto second = playEngine (-9.0f + 2.0f, -9.0f + timbre, input);

        for (std::size_t i = 0; i < expected.size(); ++i)
            expected[i] = expected[i] * 0.5f + second[i];

        EXPECT_TRUE (sameBits (output, expected)) << timbre;
    }
}
} // namespace tarvelline::test
