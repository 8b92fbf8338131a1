// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Values.h"

#include <vector>

namespace tarvelline::render
{
/** A recording to render, and the file to make of it; juce::File() for the standard input and output. */
struct Task
{
    juce::File input, output;
};

/** Which channels share a plug-in. */
enum class ChannelRule
{
    byMap, // left and right of the same place, as the file labels them; without labels as `pairs`
    pairs, // first and second, third and fourth, ...
    single
};

/** What the command line asks for. A file that was not named is juce::File(). */
struct Options
{
    enum class Action
    {
        render,
        showHelp,
        showVersion,
        listPresets,
        saveState // and render nothing
    };

    Action action = Action::render;
    std::vector<Task> tasks;                  // one at least, to render
    int jobs = 1;                             // at once, of several tasks
    std::vector<Setting> settings;            // in force from the first sample on, in the order given
    std::optional<double> semitones, formant; // already part of `settings`
    juce::File midi, automation, module, plot, state, savedState, outputFolder;
    juce::String preset, format; // a FileKind's name; empty for what OUT's ending says, in outputFolder for wav
    ChannelRule channels = ChannelRule::byMap;
    int blockSize = 512;      // samples, the most that the module gets at once
    int bits = 0;             // of a sample: 16 or 24 = integer, 32 = float, 0 = what is usual in the format
    bool alignSound = false;  // events come so early or late that they sound at their time in OUT
    bool keepFolders = false; // of IN, below outputFolder
    bool noClobber = false;   // what is there already stays
    bool quiet = false, verbose = false;
    bool isWorker = false;        // run by another run of this program, for one of its files
    juce::StringArray forWorkers; // what such a run is to be told, but for the names of its files
};

/** Reads the command line, without the program's name. Throws UserError for anything it does not know or accept; whether
    the files can be read is found out later. Once a process. */
Options parseOptions (const juce::StringArray& arguments);

juce::String helpText();
} // namespace tarvelline::render
