// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/sound/NewFile.h"
#include "render/sound/Quantiser.h"

#include <juce_audio_formats/juce_audio_formats.h>

namespace tarvelline::render
{
/** The bits a sample gets in a file of this name, whose ending names its kind: those asked for, or for 0 the most there
    are: 32 (float) in .wav, 24 in .aif, .aiff and .flac. Throws UserError for any other ending, and for bits that the kind
    does not have. */
int sampleBits (const juce::File& target, int asked);

/** A WAV, AIFF or FLAC file, by the target's ending, that comes into being whole or not at all. */
class RecordingOutput
{
public:
    /** Throws UserError when the file cannot be made.
        @param bits    16 or 24 for integer samples, 32 for float; one that sampleBits() gives
        @param source  the recording it is made from: gives rate and channels, and, when it is of the same kind, the notes
                       in the file (title, time stamp, markers, ...) */
    RecordingOutput (const juce::File& target, int bits, const juce::AudioFormatReader& source);

    /** Appends some samples of all channels. Throws UserError when the disk takes no more. */
    void append (const juce::AudioBuffer<float>&, int start, int count);

    /** Closes the temporary file. Throws UserError when it did not reach the disk in full. */
    void finish();

    /** The temporary file, to be read between finish() and commit(). */
    const juce::File& getTemporaryFile() const { return file.getTemporaryFile(); }

    /** Puts the finished file in its place. Throws UserError when that fails. */
    void commit() { file.commit(); }

    std::int64_t getLength() const { return samplesWritten; }

private:
    NewFile file;
    Quantiser quantiser;
    std::unique_ptr<juce::AudioFormatWriter> writer;
    std::int64_t samplesWritten = 0;
};
} // namespace tarvelline::render
