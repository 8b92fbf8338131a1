// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** The folders in which VST3 modules are installed: with this program, for this user, for the machine. */
juce::Array<juce::File> moduleFolders();

/** The folders in which hosts of this system look for VST3 presets, the user's own first, and the one beside a module. */
juce::Array<juce::File> presetFolders (const juce::File& module);

/** What to hand the framework to open a module: the module, which is a folder, or the file in it. */
juce::File fileToOpen (const juce::File& module);
} // namespace tarvelline::render
