// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Values.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace tarvelline::render
{
/** A parameter change and a MIDI message with their time from the start of the recording. */
struct TimedSetting
{
    double seconds = 0.0;
    Setting setting;
    bool onLine = false; // the value moves here in a straight line from the same parameter's change before
};

struct TimedMessage
{
    double seconds = 0.0;
    juce::MidiMessage message;
};

/** The changes in a text of lines "seconds,parameterId,value" or "seconds,parameterId,value,line", in order of time, and at
    one time in the order of parameterTable. Empty lines, what follows a #, and a first line that begins with just these
    three words are passed over. Throws UserError, naming the file and mostly the line. */
std::vector<TimedSetting> readAutomation (const juce::File&);

/** The notes and pitch-bends of all tracks of a standard MIDI file, timed by its tempo map or its frames; in order of time,
    and at one time those that end notes come first. Throws UserError when the file is none, or of type 2, whose tracks
    have no common time. */
std::vector<TimedMessage> readMidi (const juce::File&);
} // namespace tarvelline::render
