// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>

namespace tarvelline
{
/** One of the eight notes that can sound at once. Touched by the audio thread alone, and while that rests by who prepares it. */
struct VoiceSlot
{
    bool active = false;
    int index = 0;          // the slot's own number, 0..7: the engine that sounds it
    float level = 0.0f;     // gain; below zero while the engine's latency passes, then up to 1
    float rate = 0.0f;      // change of level a sample: above 0 fading in, below 0 fading out
    int key = 0;            // MIDI note - 36
    float semitones = 0.0f; // the voice's own shift: MIDI note - 60
};

inline constexpr int voiceCount = 8;
using VoiceSlots = std::array<VoiceSlot, voiceCount>;

/** The longest run of samples that is worked on at once: the wheels move first, then the engines sound, then all is mixed.
    Long enough that starting a run costs nothing, short enough that its arrays stay in the nearest cache. */
inline constexpr int longestRun = 128;

/** How the voices sound over a run of samples. A voice that ends within the run is active up to there. */
struct VoiceLevels
{
    struct Voice
    {
        int activeSamples = 0;                // from the run's first one
        std::array<float, longestRun> levels; // of those samples
    };

    std::array<Voice, voiceCount> voices;
};
} // namespace tarvelline
