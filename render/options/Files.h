// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Options.h"

namespace tarvelline::render
{
/** A path as the command line gives it. */
juce::File fileNamed (const juce::String& path);

/** The same, and juce::File() for -, the standard input or output. */
juce::File soundFileNamed (const juce::String& path);

/** The recordings, each with a file in a folder, called like it, of an ending. Of its name only letters, digits and . _ + -
    are kept, - for the rest, so that no shell minds it. Throws UserError when two would be one file, or one is a recording.
    @param keepFolders  names stay whole, and the folders they are in, from here or from the root */
std::vector<Task> tasksInto (const juce::File& folder, const juce::StringArray& recordings, const juce::String& ending,
                             bool keepFolders);

/** Makes the folder of a task's output, and those above it. Throws UserError when it cannot. */
void makeFolderFor (const Task&);

/** Follows a link at the place of each file to be written, and throws UserError when one of the files cannot be a file of
    its own: when it is a folder or a device, has no folder to stand in, or is read as well. What is not named
    (juce::File()) is passed over. */
void checkTargets (Options&, Task&);
} // namespace tarvelline::render
