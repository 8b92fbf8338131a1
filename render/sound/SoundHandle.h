// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <sndfile.h>

#include <memory>
#include <string>

namespace tarvelline::render
{
struct CloseSound
{
    void operator() (SNDFILE* sound) const { sf_close (sound); }
};

using SoundHandle = std::unique_ptr<SNDFILE, CloseSound>;

/** A file to read, a few bytes of which are read as others: a header that was written before its sound was there, and so
    tells no length, is seen with the length. */
struct SoundSource
{
    juce::int64 length() const { return end > 0 ? end : stream->getTotalLength(); }

    std::unique_ptr<juce::InputStream> stream;
    juce::int64 end = 0;        // bytes; where the file is to seem at its end, unless 0
    juce::int64 patchPlace = 0; // bytes from the start
    std::string patch;
};

/** A file to write, and how long it has become. */
struct SoundTarget
{
    std::unique_ptr<juce::OutputStream> stream;
    juce::int64 length = 0; // bytes
};

/** Opens a sound file of the library through a stream; its struct must outlive the handle. Files are opened in one way on every
    system, and known by what they hold, for the library sees no name. Null for what it cannot read or write, and
    sf_strerror (nullptr) tells why. */
SoundHandle openSound (SoundSource&, SF_INFO&);
SoundHandle openSound (SoundTarget&, SF_INFO&);
} // namespace tarvelline::render
