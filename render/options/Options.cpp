// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Options.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/options/OptionTable.h"
#include "render/sound/FileKinds.h"

#include <algorithm>
#include <getopt.h>
#include <string>

namespace tarvelline::render
{
namespace
{
constexpr auto seeHelp = "; tarvelline-render --help shows how";
constexpr int firstLongOption = 256; // beyond every letter; what getopt_long() gives for the first row

struct OptionTableForGetopt
{
    OptionTableForGetopt()
    {
        for (const auto& row : optionTable())
        {
            const auto value = firstLongOption + static_cast<int> (names.size());
            names.push_back ({ row.name, row.argument != nullptr ? required_argument : no_argument, nullptr, value });

            if (row.letter != 0)
                letters += row.letter;
        }

        names.push_back ({});
    }

    std::vector<option> names;
    std::string letters = "-:"; // files are handed on in their order, errors told by us
};

bool isLetterOf (const OptionRow& row, int letter) { return letter != 0 && row.letter == letter; }

void takeOption (Options& options, const OptionRow& row, const juce::String& value)
{
    const auto asked = "--" + juce::String (row.name);

    if (row.argument != nullptr && value.isEmpty())
        throw UserError (asked + " needs a value, " + row.argument + seeHelp);

    try
    {
        row.take (options, value);
    }
    catch (const UserError& error)
    {
        throw UserError (asked + " " + value + ": " + error.what());
    }

    if (row.reach == OptionRow::Reach::everyRun)
        options.forWorkers.add (row.argument != nullptr ? asked + "=" + value : asked);
}

// The option that has no value and should have one. A value too many is told in the same way by some systems.
const OptionRow* rowLacking (int found)
{
    const auto index = static_cast<std::size_t> (optopt - firstLongOption);
    return found == ':' && optionTable()[index].argument != nullptr ? &optionTable()[index] : nullptr;
}

[[noreturn]] void refuse (const juce::String& word)
{
    juce::StringArray meant;
    const auto begun = word.upToFirstOccurrenceOf ("=", false, false);

    for (const auto& row : optionTable())
        if (begun.length() > 2 && ("--" + juce::String (row.name)).startsWith (begun))
            meant.add ("--" + juce::String (row.name));

    if (meant.size() > 1)
        throw UserError (word + " may be " + meant.joinIntoString (" or ") + "; give more of its letters");

    if (meant.size() == 1)
        throw UserError (meant[0] + " takes no value; leave out " + word.fromFirstOccurrenceOf ("=", true, false));

    throw UserError ("unknown option " + word + "; tarvelline-render --help lists what there is, and a file whose name "
                     + "begins with a dash comes after --");
}

// What getopt_long() finds, in order; gives the names of files.
juce::StringArray takeAll (Options& options, const juce::StringArray& arguments)
{
    std::vector<std::string> words { "tarvelline-render" };
    std::vector<char*> pointers;
    const OptionTableForGetopt table;
    juce::StringArray files;

    for (const auto& argument : arguments)
        words.push_back (argument.toStdString());

    pointers.reserve (words.size() + 1);

    for (auto& word : words)
        pointers.push_back (word.data());

    pointers.push_back (nullptr);
    const auto count = static_cast<int> (words.size());

    for (int found;
         (found = getopt_long (count, pointers.data(), table.letters.c_str(), table.names.data(), nullptr)) != -1;)
    {
        const auto& rows = optionTable();
        const auto word = juce::String::fromUTF8 (pointers[static_cast<std::size_t> (optind - 1)]);
        const auto value = optarg != nullptr ? juce::String::fromUTF8 (optarg) : juce::String();
        const auto row = std::find_if (rows.begin(), rows.end(), [&] (const auto& r) { return isLetterOf (r, found); });

        if (found == 1)
            files.add (value);
        else if (const auto* lacking = rowLacking (found); lacking != nullptr)
            takeOption (options, *lacking, {});
        else if (found == ':' || found == '?')
            refuse (optopt > 0 && optopt < firstLongOption
                        ? "-" + juce::String::charToString (static_cast<juce::juce_wchar> (optopt))
                        : word);
        else
            takeOption (options, row != rows.end() ? *row : rows[static_cast<std::size_t> (found - firstLongOption)],
                        value);
    }

    files.addArray (arguments, optind - 1);
    return files;
}

void addShift (std::vector<Setting>& settings, const Wheel& wheel, double semitones)
{
    for (const auto& setting : settings)
        if (setting.parameter == wheel.range || setting.parameter == wheel.position)
            throw UserError (
                juce::String (wheel.option) + " sets " + parameterTable[static_cast<std::size_t> (wheel.position)].id
                + " and " + parameterTable[static_cast<std::size_t> (wheel.range)].id + ": leave out --set for these");

    settings.push_back ({ wheel.range, rangeFor (semitones) });
    settings.push_back ({ wheel.position, positionFor (semitones, rangeFor (semitones)) });
}

void addShifts (Options& options)
{
    if (options.semitones)
        addShift (options.settings, wheels().front(), *options.semitones);

    if (options.formant)
    {
        addShift (options.settings, wheels().back(), *options.formant);
        options.settings.push_back ({ parameterIndex (parameterId::toggleSize), 1.0f });
    }
}

// IN OUT, or any number of IN for a folder.
void addTasks (Options& options, const juce::StringArray& files)
{
    const bool intoFolder = options.outputFolder != juce::File();

    if (intoFolder && files.size() > 1)
        for (const auto& [name, file] :
             { std::pair { "--plot", options.plot }, { "--save-state", options.savedState } })
            if (file != juce::File())
                throw UserError (juce::String (name) + " is for one IN: leave it out with several");

    if (files.isEmpty() && options.savedState != juce::File())
        options.action = Options::Action::saveState;
    else if (intoFolder ? files.isEmpty() : files.size() != 2)
        throw UserError ((intoFolder         ? "name at least one file, IN"
                          : files.size() < 2 ? "name two files, IN and OUT"
                                             : "more than two files: " + files[2] + " is too many without --out-dir")
                         + juce::String (seeHelp));
    else if (intoFolder)
        options.tasks =
            tasksInto (options.outputFolder, files, options.format.isEmpty() ? juce::String ("wav") : options.format,
                       options.keepFolders);
    else
        options.tasks = { { soundFileNamed (files[0]), soundFileNamed (files[1]) } };
}

void checkCombinations (const Options& options)
{
    if (options.state != juce::File() && options.preset.isNotEmpty())
        throw UserError ("--state and --preset: give one of the two");

    if (options.quiet && options.verbose)
        throw UserError ("--quiet and --verbose: give one of the two");

    if (options.keepFolders && options.outputFolder == juce::File())
        throw UserError ("--keep-folders is about files below --out-dir DIR: give that as well, or leave it out");

    if (! options.tasks.empty()) // throws when they do not fit together
        sampleBits (fileKind (options.tasks.front().output, options.format), options.bits);
}
} // namespace

Options parseOptions (const juce::StringArray& arguments)
{
    Options options;
    const auto files = takeAll (options, arguments);
    addShifts (options);

    if (options.action == Options::Action::render)
        addTasks (options, files);

    checkCombinations (options);
    return options;
}
} // namespace tarvelline::render
