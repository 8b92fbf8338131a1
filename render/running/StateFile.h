// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Values.h"

#include <vector>

namespace tarvelline::render
{
/** The value of every parameter, in the order of parameterTable, in a state of the plug-in: a .vstpreset file, or the bare
    block that the plug-in hands its host. Throws UserError when the file holds neither. Wants the framework's message
    thread. */
std::vector<Setting> readState (const juce::File&);
} // namespace tarvelline::render
