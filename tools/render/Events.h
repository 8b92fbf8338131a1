// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/Values.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <vector>

namespace tarvelline::render
{
/** A parameter change and a MIDI message with their time from the start of the recording. */
struct TimedSetting
{
    double seconds = 0.0;
    Setting setting;
};

struct TimedMessage
{
    double seconds = 0.0;
    juce::MidiMessage message;
};

/** The changes in a text of lines "seconds,parameterId,value", in order of time. Empty lines, what follows a #, and a first
    line of just these three words are passed over. Throws UserError, naming file and line. */
std::vector<TimedSetting> readAutomation (const juce::File&);

/** The notes and pitch-bends of all tracks of a standard MIDI file, in order of time; of events at the same time those that
    end notes come first. Throws UserError when the file is none. */
std::vector<TimedMessage> readMidi (const juce::File&);
} // namespace tarvelline::render
