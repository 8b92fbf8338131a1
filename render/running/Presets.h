// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvelline::render
{
/** The presets (*.vstpreset) in the folders where hosts look for them and beside the plug-in; of those with one name the
    user's own comes first and the others are left out. In order of name.
    @param module  the plug-in */
std::vector<juce::File> findPresets (const juce::File& module);

/** The preset of a name, whose case does not matter. Throws UserError when there is none. */
juce::File presetNamed (const juce::String& name, const juce::File& module);
} // namespace tarvelline::render
