// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Signals.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <gtest/gtest.h>

#include <memory>
#include <sndfile.h>
#include <vector>

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
    RenderTest()
    {
        folder.createDirectory();
        formats.registerBasicFormats();
    }
    ~RenderTest() override { folder.deleteRecursively(); }

    juce::File file (const juce::String& name) const { return folder.getChildFile (name); }

    /** Writes a sound file of the kind that the name ends in: of 24 bits in .aiff, else a WAV of 32. */
    void write (const juce::String& name, const Recording& recording) const
    {
        writeKind (name,
                   name.endsWith (".aiff")         ? SF_FORMAT_AIFF | SF_FORMAT_PCM_24
                   : recording.channels.size() > 2 ? SF_FORMAT_WAVEX | SF_FORMAT_FLOAT
                                                   : SF_FORMAT_WAV | SF_FORMAT_FLOAT,
                   recording);
    }

    /** Writes a sound file of a kind, SF_FORMAT_*, by another library. */
    void writeKind (const juce::String& name, int format, const Recording& recording) const
    {
        SF_INFO info {};
        info.samplerate = juce::roundToInt (recording.rate);
        info.channels = static_cast<int> (recording.channels.size());
        info.format = format;
        auto* const out = sf_open (file (name).getFullPathName().toRawUTF8(), SFM_WRITE, &info);
        ASSERT_NE (out, nullptr) << sf_strerror (nullptr);

        Samples frames;

        for (std::size_t i = 0; i < recording.channels[0].size(); ++i)
            for (const auto& channel : recording.channels)
                frames.push_back (channel[i]);

        sf_write_float (out, frames.data(), static_cast<sf_count_t> (frames.size()));
        sf_close (out);
    }

    /** A MIDI file of messages, each at its time in milliseconds. */
    void writeMidi (const std::vector<std::pair<int, juce::MidiMessage>>& messages)
    {
        juce::MidiMessageSequence track;

        for (const auto& [time, message] : messages)
            track.addEvent (message, time);

        juce::MidiFile midi;
        midi.setSmpteTimeFormat (25, 40); // 1000 ticks a second
        midi.addTrack (track);
        file ("notes.mid").deleteFile();
        ASSERT_TRUE (midi.writeTo (*file ("notes.mid").createOutputStream()));
    }

    Recording read (const juce::String& name)
    {
        const std::unique_ptr<juce::AudioFormatReader> reader (formats.createReaderFor (file (name)));

        if (reader == nullptr)
            return { 0.0, { {} } };

        const Samples empty (static_cast<std::size_t> (reader->lengthInSamples));
        Recording recording { reader->sampleRate, { reader->numChannels, empty } };
        std::vector<float*> data;

        for (auto& channel : recording.channels)
            data.push_back (channel.data());

        reader->read (data.data(), static_cast<int> (data.size()), 0, static_cast<int> (empty.size()));
        return recording;
    }

    /** Runs a command of the shell in the folder, for ten minutes at most, with the program as $RENDER: the one built here,
        or the one that TARVELLINE_RENDER names. */
    Outcome shell (const juce::String& command) const
    {
        juce::ChildProcess child;
        const auto script = "cd '" + folder.getFullPathName()
                            + "' || exit; RENDER=${TARVELLINE_RENDER:-'" TARVELLINE_RENDER "'}; " + command;

        if (! child.start (juce::StringArray { "timeout", "600", "/bin/sh", "-c", script }))
            return {};

        const auto text = child.readAllProcessOutput();
        child.waitForProcessToFinish (-1);
        return { static_cast<int> (child.getExitCode()), text };
    }

    /** Runs the program in the folder; arguments are parted by spaces. */
    Outcome run (const juce::String& arguments) const { return shell ("exec \"$RENDER\" " + arguments); }

    /** Runs it on in.wav, expects success, and gives the first channel of what it made. */
    Samples render (const juce::String& options)
    {
        const auto outcome = run ("in.wav out.wav " + options);
        EXPECT_EQ (outcome.exitCode, 0) << outcome.text;
        return read ("out.wav").channels[0];
    }

    /** The names of the files in the folder, sorted. */
    juce::StringArray filesThere() const
    {
        juce::StringArray names;

        for (const auto& found : folder.findChildFiles (juce::File::findFilesAndDirectories, true))
            names.add (found.getRelativePathFrom (folder));

        names.sort (false);
        return names;
    }

private:
    juce::AudioFormatManager formats;
    const juce::File folder = juce::File::getSpecialLocation (juce::File::tempDirectory)
                                  .getNonexistentChildFile ("tarvelline render " + juce::Uuid().toString(), {});
};
} // namespace tarvelline::test
