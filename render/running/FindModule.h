// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

namespace tarvelline::render
{
/** The plug-in to load. Throws UserError when it is nowhere.
    @param asked  a module; juce::File() for the first found: the one built with this program, the one installed with it,
                  then those of this user and of the machine */
juce::File findModule (const juce::File& asked);
} // namespace tarvelline::render
