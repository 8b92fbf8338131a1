// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** All that the program does; where it starts is each system's own.
    @returns its exit code */
int runProgram (const juce::StringArray& arguments);
} // namespace tarvelline::render
