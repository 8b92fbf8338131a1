// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/presets/PresetTable.h"

namespace tarvelline::presets
{
/** Writes a .vstpreset file of every preset. The finished module is loaded and set as a host does it, so that the bytes are
    the module's own state. Message thread only.
    Throws std::runtime_error if the module or the folder will not do. */
void writePresetFiles (const std::vector<Preset>&, const juce::File& module, const juce::File& folder);

/** Puts the presets into a finished LV2 bundle, in place of those that are in it. Message thread only.
    Throws std::runtime_error if the bundle will not do. */
void writeLv2Presets (const std::vector<Preset>&, const juce::File& bundle);

/** The presets as a page in Markdown: what each is for, and its values. */
juce::String presetPage (const std::vector<Preset>&);
} // namespace tarvelline::presets
