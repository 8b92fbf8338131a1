// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** A place for what goes through a pipe: sound is read more than once, and a header tells its length, so that both ways
    lead over a file. In the folder for temporary files (TMPDIR). */
juce::File fileForPipe();

/** Reads the standard input to its end. Throws UserError when that fails, Interrupted when the program is asked to stop. */
void copyFromInput (juce::OutputStream&);

/** Writes a file to the standard output. Throws UserError when its reader has gone, Interrupted when the program is asked
    to stop. */
void copyToOutput (const juce::File&);
} // namespace tarvelline::render
