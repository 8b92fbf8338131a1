// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/VoiceSlot.h"
#include "processor/RelaxedAtomic.h"

#include <array>
#include <cstdint>

namespace tarvelline
{
inline constexpr int lowestKeyNote = 36; // MIDI note of key 0, the lowest C of the keyboard display
inline constexpr int keyCount = 49;      // four octaves and the C above

/** The notes being played: the eight voice slots that the engine bank sounds, and the keys that the editor lights.

    Threads: everything runs on the audio thread, but prepare(), which runs while no audio does, and `keyLit` and
            `keysChanged`, which the editor reads (and clears).
    Real time: nothing allocates or locks.
    Bad input: any note number is taken; one beside the keyboard display sounds and lights no key. */
class MidiVoices
{
public:
    /** Ends all notes and darkens all keys.
        @param frameSize   the engine's latency in samples, which a new voice waits out in silence
        @param sampleRate  Hz */
    void prepare (int frameSize, float sampleRate) noexcept;

    /** A note in transpose mode: slot 0 takes it, whatever it held.
        @returns the transposition in semitones, note - 60 */
    float transposeTo (int noteNumber) noexcept;

    /** A note as a voice of its own, in the lowest free slot. Ignored when a slot still holds the key, even while it fades
        out, and when all eight are in use: no voice is stolen. */
    void startVoice (int noteNumber) noexcept;

    /** Lets every slot that holds the note fade out, in either mode. */
    void release (int noteNumber) noexcept;

    /** Moves the level of every active slot by `count` samples, at most `longestRun`, and notes each of them. */
    void advanceLevels (VoiceLevels& levels, int count) noexcept;

    VoiceSlots slots;
    std::array<RelaxedAtomic<std::uint8_t>, keyCount> keyLit; // written here, read by the editor's keyboard
    RelaxedAtomic<bool> keysChanged { false }; // set when a key changes, cleared by the editor once it repainted

private:
    void fillSlot (VoiceSlot&, int slotNumber, int key) noexcept;
    void light (int key, bool lit) noexcept;
    static void advanceLevel (VoiceSlot&) noexcept;

    float levelRate = 0.0f;    // change of level a sample while fading
    float initialLevel = 0.0f; // below zero: the time in which the engine's latency passes
};
} // namespace tarvelline
