// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/Values.h"

#include <vector>

namespace tarvelline::render
{
/** What the command line asks for. A file that was not named is juce::File(). */
struct Options
{
    enum class Action
    {
        render,
        showHelp,
        showVersion
    };

    Action action = Action::render;
    juce::File input, output;
    std::vector<Setting> settings;   // in force from the first sample on, in the order given
    std::optional<double> semitones; // already part of `settings`
    juce::File midi, automation, module, plot;
    int blockSize = 512; // samples, the most that the module gets at once
    int bits = 32;       // 24 = integer, 32 = float
};

/** Reads the command line, without the program's name. Throws UserError for anything it does not know or accept; whether
    the files can be read is found out later. */
Options parseOptions (const juce::StringArray& arguments);

juce::String helpText();
} // namespace tarvelline::render
