// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Signals.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace tarvelline::test
{
/** A sound file's contents. */
struct Recording
{
    double rate = 0.0;
    std::vector<Samples> channels;
};

/** What a finished program leaves: its exit code, and all that it printed. */
struct Outcome
{
    int exitCode = -1;
    juce::String text;
};

/** The finished program, run on files in a folder of its own that is gone after the test. */
class RenderTest : public testing::Test
{
protected:
    RenderTest() { folder.createDirectory(); }
    ~RenderTest() override { folder.deleteRecursively(); }

    juce::File file (const juce::String& name) const { return folder.getChildFile (name); }

    /** Writes a 32-bit float WAV file, or an AIFF file of 24 bits when the name ends in .aiff. */
    void write (const juce::String& name, const Recording&) const;
    Recording read (const juce::String& name) const;

    /** Writes a standard MIDI file: messages at ticks, 480 a beat, and the tempo in seconds a beat from tick 0 and from a
        later one on. */
    void writeMidi (const juce::String& name, std::initializer_list<std::pair<int, juce::MidiMessage>>,
                    double secondsPerBeat = 0.5, int laterTick = 0, double laterSecondsPerBeat = 0.5) const;

    /** Runs the program in the folder; arguments are parted by spaces. */
    Outcome run (const juce::String& arguments) const;

    /** Runs it on in.wav, expects success, and gives the first channel of what it made. */
    Samples render (const juce::String& options) const;

    /** The names of the files in the folder, sorted. */
    juce::StringArray filesThere() const;

    /** Runs a command of the shell in the folder, with the program as $RENDER. */
    Outcome shell (const juce::String& command) const;

private:
    const juce::File folder = juce::File::getSpecialLocation (juce::File::tempDirectory)
                                  .getNonexistentChildFile ("tarvelline render " + juce::Uuid().toString(), {});
};
} // namespace tarvelline::test
