// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/sound/FileKinds.h"
#include "render/sound/NewFile.h"
#include "render/sound/Quantiser.h"
#include "render/sound/Recording.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace tarvelline::render
{
/** A sound file that comes into being whole or not at all. */
class RecordingOutput
{
public:
    /** Throws UserError when the file cannot be made: also when the kind does not have such a rate, so many channels or
        such a length, or the system's sound library cannot write it.
        @param target  juce::File() for the standard output
        @param bits    16 or 24 for integer samples, 32 for float; one that sampleBits() gives
        @param source  the recording it is made from: gives rate and channels, and what else it holds: all of it to a file
                       of the same family, to another the title and the like. To be alive until finish() */
    RecordingOutput (const juce::File& target, const FileKind&, int bits, Recording& source);

    /** Appends some samples of all channels. Throws UserError when the disk takes no more. */
    void append (const juce::AudioBuffer<float>&, int start, int count);

    /** Closes the temporary file. Throws UserError when it did not reach the disk in full. */
    void finish();

    /** The temporary file, to be read between finish() and commit(). */
    const juce::File& getTemporaryFile() const { return file.getTemporaryFile(); }

    /** Puts the finished file in its place, or copies it to the standard output. Throws UserError when that fails. */
    void commit();

    juce::int64 getLength() const { return samplesWritten; }

private:
    void open();
    bool keepsNotes() const; // all of them, byte by byte
    void takeTexts();

    const FileKind& kind;
    Recording& source;
    const int sampleBits;
    const bool isPiped;
    NewFile file;
    Quantiser quantiser;
    SoundTarget out;
    bool isRf64 = false;
    SoundHandle handle;
    std::vector<float> frames;
    juce::int64 samplesWritten = 0;
};
} // namespace tarvelline::render
