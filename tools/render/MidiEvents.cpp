// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Errors.h"
#include "tools/render/Events.h"

#include <algorithm>
#include <tuple>

namespace tarvelline::render
{
namespace
{
bool isPlayed (const juce::MidiMessage& message) { return message.isNoteOnOrOff() || message.isPitchWheel(); }

bool comesBefore (const TimedMessage& a, const TimedMessage& b)
{
    return std::make_tuple (a.seconds, a.message.isNoteOn()) < std::make_tuple (b.seconds, b.message.isNoteOn());
}
} // namespace

std::vector<TimedMessage> readMidi (const juce::File& file)
{
    juce::FileInputStream stream (file);
    juce::MidiFile midi;
    constexpr bool addMissingNoteOffs = false; // a note struck twice is played as it stands

    if (! stream.openedOk() || file.isDirectory())
        throw UserError ("--midi: cannot read " + file.getFullPathName());

    if (! midi.readFrom (stream, addMissingNoteOffs) || midi.getTimeFormat() == 0)
        throw UserError ("--midi: " + file.getFullPathName() + " is not a standard MIDI file");

    midi.convertTimestampTicksToSeconds();
    std::vector<TimedMessage> messages;

    for (int track = 0; track < midi.getNumTracks(); ++track)
        for (const auto* event : *midi.getTrack (track))
            if (isPlayed (event->message))
                messages.push_back ({ event->message.getTimeStamp(), event->message });

    std::stable_sort (messages.begin(), messages.end(), comesBefore);
    return messages;
}
} // namespace tarvelline::render
