// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** A kind of sound file that can be written. */
struct FileKind
{
    const char* name;    // on the command line, and the ending of files that are named here
    const char* endings; // all that stand for it, parted by ;
    const char* inWords;
    int format;   // the sound library's, for a lossy kind with its encoding
    int mostBits; // of a sample: 24 = integer, 32 = float; 0 for a lossy kind
    int bits;     // unless others are asked for
    int mostChannels;
    int mostRate;          // Hz; below it the library knows
    juce::int64 mostBytes; // of sound
    double quality;        // of a lossy kind, 0 to 1; all three take some 130 kbit/s a channel

    bool isLossy() const { return mostBits == 0; }
};

/** The kind with the name that is asked for, or else the one that a file's ending stands for; WAV for no file (the standard
    output). Throws UserError when there is none, or when the two disagree. */
const FileKind& fileKind (const juce::File& target, const juce::String& name);

/** The bits that a sample gets: those asked for, or for 0 the usual ones, 32 (float) for a lossy kind. Throws UserError for
    bits that the kind does not have. */
int sampleBits (const FileKind&, int asked);
} // namespace tarvelline::render
