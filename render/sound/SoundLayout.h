// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <string>
#include <vector>

namespace tarvelline::render
{
/** Where in a sound file what stands, as far as its header tells: for WAV (RF64), W64, AIFF, CAF and AU. The sound library
    opens a file that is cut off as if it were whole, and does not pass on all the notes in it. */
struct SoundLayout
{
    enum class Family
    {
        riff,
        aiff,
        other
    };

    struct Chunk
    {
        std::string name; // four characters
        juce::int64 start = 0, size = 0;
    };

    Family family = Family::other;
    std::vector<Chunk> chunks;             // those that are there in full, the sound left out
    juce::int64 promised = 0, present = 0; // bytes of sound; both 0 when no header tells
    juce::int64 soundEnd = 0;              // bytes; of a W64, where the library takes all that follows for sound

    // Where the length of the sound stands, and what should stand there when the file was written before it was known; else
    // empty.
    juce::int64 lengthPlace = 0;
    std::string length;
};

/** False when a file begins as none of the kinds that are read. */
bool hasSoundMark (juce::InputStream&);

SoundLayout readLayout (juce::InputStream&);

/** Whether a file that begins as Ogg ends with the last page of a stream; true for every other. */
bool endsAsItShould (juce::InputStream&);

/** Whether an MP3 begins with a table that tells its length. */
bool mp3HasTable (juce::InputStream&);

/** Appends what a file holds besides its sound (titles, time stamp, markers, loops, tempo, ...) to a finished one of the
    same family, byte by byte, and corrects the length in its header. */
void appendNotes (const SoundLayout&, juce::InputStream& from, juce::OutputStream& to, bool intoRf64);
} // namespace tarvelline::render
