// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/events/Events.h"
#include "render/options/Errors.h"

#include <algorithm>
#include <tuple>

namespace tarvelline::render
{
namespace
{
bool isPlayed (const juce::MidiMessage& message) { return message.isNoteOnOrOff() || message.isPitchWheel(); }

// In SMPTE's terms 29 frames a second are 30 with two left out a minute, 29.97: the framework takes the number as it stands.
double frameRateFactor (int timeFormat)
{
    constexpr int dropFrame = -29;
    return timeFormat >> 8 == dropFrame ? 29.0 * 1001.0 / 30000.0 : 1.0;
}

} // namespace

void sortEvents (std::vector<TimedMessage>& messages)
{
    std::stable_sort (messages.begin(), messages.end(),
                      [] (const TimedMessage& a, const TimedMessage& b) {
                          return std::make_tuple (a.seconds, a.message.isNoteOn())
                                 < std::make_tuple (b.seconds, b.message.isNoteOn());
                      });
}

std::vector<TimedMessage> readMidi (const juce::File& file)
{
    juce::FileInputStream stream (file);
    juce::MidiFile midi;
    constexpr bool addMissingNoteOffs = false; // a note struck twice is played as it stands

    if (! stream.openedOk() || file.isDirectory())
        throw UserError ("--midi: cannot read " + file.getFullPathName());

    int type = 0;
    const bool read = midi.readFrom (stream, addMissingNoteOffs, &type);
    const auto timeFormat = midi.getTimeFormat();

    if (! read || timeFormat == 0 || (timeFormat < 0 && (timeFormat & 0xff) == 0))
        throw UserError ("--midi: " + file.getFullPathName() + " is not a standard MIDI file");

    if (type == 2)
        throw UserError ("--midi: " + file.getFullPathName()
                         + " is of type 2, patterns without a common time; save it as type 0 or 1");

    const auto factor = frameRateFactor (timeFormat);
    midi.convertTimestampTicksToSeconds();
    std::vector<TimedMessage> messages;

    for (int track = 0; track < midi.getNumTracks(); ++track)
        for (const auto* event : *midi.getTrack (track))
            if (isPlayed (event->message))
                messages.push_back ({ event->message.getTimeStamp() * factor, event->message });

    sortEvents (messages);
    return messages;
}
} // namespace tarvelline::render
