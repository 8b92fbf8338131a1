// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** To be called first. From now on the standard streams carry bytes as they are, and text in UTF-8; one that is closed gets
    the empty device, where reading and writing fail, so that no file opened later is taken for it. */
void prepareStreams();

/** Some bytes of the standard input; 0 at its end. Throws UserError when it cannot be read, Interrupted when the program is
    asked to stop. */
std::size_t readInput (char* into, std::size_t most);

/** Writes all to the standard output. Throws UserError when its reader has gone, Interrupted when the program is asked to
    stop. */
void writeOutput (const char* bytes, std::size_t count);

/** Makes an empty file: here and now or not at all, so that nothing is written into a file or through a link that is there
    already.
    @returns why it could not; empty when it could */
juce::String makeNewFile (const juce::File&);
} // namespace tarvelline::render
