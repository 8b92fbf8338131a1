// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/MidiVoices.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr int middleCKey = 24;          // MIDI note 60: no shift
constexpr float fadesPerSecond = 15.0f; // a voice fades in and out over 1/15 s
} // namespace

void MidiVoices::prepare (int frameSize, float sampleRate) noexcept
{
    levelRate = fadesPerSecond / sampleRate;
    initialLevel = -static_cast<float> (frameSize) * levelRate;

    for (auto& lit : keyLit)
        lit = 0;

    keysChanged = true;

    for (auto& slot : slots)
        slot.active = false;

    slots[0].semitones = 0.0f;
}

float MidiVoices::transposeTo (int noteNumber) noexcept
{
    light (slots[0].key, false);
    fillSlot (slots[0], 0, noteNumber - lowestKeyNote);
    return slots[0].semitones;
}

void MidiVoices::startVoice (int noteNumber) noexcept
{
    const auto key = noteNumber - lowestKeyNote;

    if (std::any_of (slots.begin(), slots.end(), [key] (const auto& slot) { return slot.active && slot.key == key; }))
        return;

    const auto free = std::find_if (slots.begin(), slots.end(), [] (const auto& slot) { return ! slot.active; });

    if (free != slots.end())
        fillSlot (*free, static_cast<int> (free - slots.begin()), key);
}

void MidiVoices::release (int noteNumber) noexcept
{
    const auto key = noteNumber - lowestKeyNote;

    for (auto& slot : slots)
    {
        if (slot.key == key)
        {
            slot.rate = -levelRate;
            light (key, false);
        }
    }

    keysChanged = true;
}

void MidiVoices::advanceLevels (VoiceLevels& levels, int count) noexcept
{
    for (std::size_t i = 0; i < slots.size(); ++i)
    {
        auto& slot = slots[i];
        auto& voice = levels.voices[i];
        voice.activeSamples = 0;

        if (slot.active && slot.rate == 0.0f) // at rest, as most of the time
        {
            std::fill_n (voice.levels.begin(), count, slot.level);
            voice.activeSamples = count;
        }

        while (slot.active && voice.activeSamples < count)
        {
            advanceLevel (slot);

            if (slot.active)
                voice.levels[static_cast<std::size_t> (voice.activeSamples++)] = slot.level;
        }
    }
}

void MidiVoices::advanceLevel (VoiceSlot& slot) noexcept
{
    if (slot.rate == 0.0f)
        return;

    slot.level += slot.rate;

    if (slot.rate > 0.0f && slot.level >= 1.0f)
    {
        slot.level = 1.0f;
        slot.rate = 0.0f;
    }
    else if (slot.rate < 0.0f && slot.level < 0.0f)
    {
        slot.level = 0.0f;
        slot.rate = 0.0f;
        slot.active = false;
    }
}

void MidiVoices::fillSlot (VoiceSlot& slot, int slotNumber, int key) noexcept
{
    // The level starts N * rate below zero: silent while the engine's N-sample pipeline fills, then the fade-in.
    slot = { .active = true,
             .index = slotNumber,
             .level = initialLevel,
             .rate = levelRate,
             .key = key,
             .semitones = static_cast<float> (key - middleCKey) };

    light (key, true);
    keysChanged = true;
}

void MidiVoices::light (int key, bool lit) noexcept
{
    if (key >= 0 && key < keyCount)
        keyLit[static_cast<std::size_t> (key)] = lit ? 1 : 0;
}
} // namespace tarvelline
