// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>

namespace tarvelline::render
{
/** Opens a recording that the plug-in can take: WAV or AIFF, one or two channels, at least one sample. Throws UserError. */
std::unique_ptr<juce::AudioFormatReader> openRecording (const juce::File&);

/** A WAV file that comes into being whole or not at all: samples go into a temporary file beside the target, which takes
    the target's place in commit(). Destroyed before that, it leaves nothing behind and the target as it was. */
class WavOutput
{
public:
    /** Throws UserError when the file cannot be made.
        @param target  a file or nothing yet; through a link, what it points at is replaced
        @param bits    24 for integer samples, 32 for float */
    WavOutput (const juce::File& target, double sampleRate, int channels, int bits);

    /** Appends some samples of all channels. Throws UserError when the disk takes no more. */
    void append (const juce::AudioBuffer<float>&, int start, int count);

    /** Closes the temporary file. Throws UserError when it did not reach the disk in full. */
    void finish();

    /** The temporary file, to be read between finish() and commit(). */
    const juce::File& getTemporaryFile() const { return temporary.getFile(); }

    /** Puts the finished file in its place. Throws UserError when that fails. */
    void commit();

    std::int64_t getLength() const { return samplesWritten; }

private:
    [[noreturn]] void failToWrite() const;

    juce::TemporaryFile temporary;
    juce::FileOutputStream* stream = nullptr; // owned by the writer
    std::unique_ptr<juce::AudioFormatWriter> writer;
    std::int64_t samplesWritten = 0;
};
} // namespace tarvelline::render
