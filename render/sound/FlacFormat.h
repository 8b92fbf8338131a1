// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>

namespace tarvelline::render
{
/** Reads FLAC files, and writes them with 16 or 24 bits. Its reader gives silence for what it cannot decode: ask flacFault()
    first. */
std::unique_ptr<juce::AudioFormat> createFlacFormat();

/** Decodes a whole FLAC file and tells what is wrong with it, in words that follow its name ("is cut off"); empty when it
    is as it was encoded. */
juce::String flacFault (const juce::File&);
} // namespace tarvelline::render
