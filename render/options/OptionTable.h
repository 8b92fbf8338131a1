// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Options.h"

namespace tarvelline::render
{
/** One option: all that the command line and the help know of it. */
struct OptionRow
{
    enum class Group
    {
        sound,
        files,
        other,
        internal // not in the help
    };

    /** Who must be told: a run for one of several files is told its IN and OUT, and not how they were found. */
    enum class Reach
    {
        everyRun,
        firstRun
    };

    Group group;
    Reach reach;
    const char* name;     // without its dashes
    char letter;          // for short; 0 = none
    const char* argument; // as the help calls it; null = it takes none
    const char* help;     // lines, not longer than 98 letters

    /** Throws UserError, whose message tells what is accepted. */
    void (*take) (Options&, const juce::String& value);
};

/** In the order of the help. */
const std::vector<OptionRow>& optionTable();
} // namespace tarvelline::render
