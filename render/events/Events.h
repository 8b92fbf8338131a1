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
    bool onLine = false;      // the value moves here in a straight line from the same parameter's change before
    bool inSemitones = false; // a wheel's; its value is the shift, for applyRanges() to convert
};

struct TimedMessage
{
    double seconds = 0.0;
    juce::MidiMessage message;
};

/** In order of time, and at one time what ends notes first. */
void sortEvents (std::vector<TimedMessage>&);

/** The changes in a text of lines "seconds,parameterId,value" or "seconds,parameterId,value,line", in order of time, and at
    one time in the order of parameterTable. "pitch" and "timbre" stand for the wheels, with semitones as their values.
    Empty lines, what follows a #, and a first line that begins with just these three words are passed over. Throws
    UserError, naming the file and mostly the line. */
std::vector<TimedSetting> readAutomation (const juce::File&);

/** The notes and pitch-bends of all tracks of a standard MIDI file, timed by its tempo map or its frames; in order of time,
    and at one time those that end notes come first. Throws UserError when the file is none, or of type 2, whose tracks
    have no common time. */
std::vector<TimedMessage> readMidi (const juce::File&);

/** Turns the semitones of a table into positions of the wheels: on the range that playing begins with, or on the narrowest
    that holds the table if that one does not, on which the wheel begins at the shift it had. A table that moves the timbre
    puts the timbre wheel in use, unless it says when.
    @param settings  what playing begins with, a value at most for each parameter, in the order of parameterTable */
void applyRanges (std::vector<TimedSetting>&, std::vector<Setting>& settings);

/** Delays what is automated and played by the latency, so that it acts on the output from its time there on. Voices begin
    one latency late by themselves, and end early enough for their key's next note. What comes at 0 s comes there too.
    @param changes, messages  in order
    @param voices             notes are voices; else they transpose */
void alignToSound (std::vector<TimedSetting>&, std::vector<TimedMessage>&, double latencySeconds, bool voices);
} // namespace tarvelline::render
