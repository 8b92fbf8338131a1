// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Options.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/sound/FileKinds.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvelline::render
{
namespace
{
constexpr int largestBlock = 65536; // samples; more than any host uses
constexpr int mostJobs = 256;       // more than any machine gains by

void addSetting (Options& options, const juce::String& text)
{
    if (! text.containsChar ('='))
        throw UserError ("--set " + text + ": give parameterId=value, as in --set mixerPar=0.5");

    options.settings.push_back (parseSetting ("--set " + text, text.upToFirstOccurrenceOf ("=", false, false).trim(),
                                              text.fromFirstOccurrenceOf ("=", false, false).trim()));
}

void setSemitones (Options& options, const juce::String& text)
{
    options.semitones = parseNumber (text);

    if (! options.semitones || std::abs (*options.semitones) > wheelRangeTable.back() / 2.0)
        throw UserError ("--semitones " + text + ": give a number from -24 to +24");
}

int wholeNumber (const juce::String& option, const juce::String& text, int most)
{
    const auto number = parseNumber (text);

    if (! number || *number < 1.0 || *number > most || *number != std::floor (*number))
        throw UserError (option + " " + text + ": give a whole number from 1 to " + juce::String (most));

    return static_cast<int> (*number);
}

void setBits (Options& options, const juce::String& text)
{
    if (text != "16" && text != "24" && text != "32")
        throw UserError ("--bits " + text + ": give 16 or 24 (integer) or 32 (float)");

    options.bits = text.getIntValue();
}

void setFormat (Options& options, const juce::String& text) { options.format = fileKind ({}, text).name; }

void setChannels (Options& options, const juce::String& text)
{
    if (text != "pairs" && text != "single")
        throw UserError ("--channels " + text + ": give pairs or single");

    options.channels = text == "pairs" ? ChannelRule::pairs : ChannelRule::single;
}

struct Row
{
    const char* name;
    void (*take) (Options&, const juce::String& value);
};

const std::array<Row, 15> rows { {
    { "--set", addSetting },
    { "--semitones", setSemitones },
    { "--midi", [] (Options& o, const juce::String& text) { o.midi = fileNamed (text); } },
    { "--automate", [] (Options& o, const juce::String& text) { o.automation = fileNamed (text); } },
    { "--block",
      [] (Options& o, const juce::String& text) { o.blockSize = wholeNumber ("--block", text, largestBlock); } },
    { "--module", [] (Options& o, const juce::String& text) { o.module = fileNamed (text); } },
    { "--plot", [] (Options& o, const juce::String& text) { o.plot = fileNamed (text); } },
    { "--bits", setBits },
    { "--jobs", [] (Options& o, const juce::String& text) { o.jobs = wholeNumber ("--jobs", text, mostJobs); } },
    { "--format", setFormat },
    { "--channels", setChannels },
    { "--out-dir", [] (Options& o, const juce::String& text) { o.outputFolder = fileNamed (text); } },
    { "--state", [] (Options& o, const juce::String& text) { o.state = fileNamed (text); } },
    { "--save-state", [] (Options& o, const juce::String& text) { o.savedState = fileNamed (text); } },
    { "--preset", [] (Options& o, const juce::String& text) { o.preset = text; } },
} };

// "--name value" or "--name=value"; moves `next` past what it used.
void takeOption (Options& options, const juce::StringArray& arguments, int& next)
{
    const auto& argument = arguments[next++];
    const auto name = argument.upToFirstOccurrenceOf ("=", false, false);
    const auto row = std::find_if (rows.begin(), rows.end(), [&] (const Row& r) { return name == r.name; });

    if (row == rows.end())
        throw UserError ("unknown option " + argument + "; tarvelline-render --help lists what there is");

    const auto inside = argument.fromFirstOccurrenceOf ("=", false, false);
    const auto value = argument.containsChar ('=') ? inside : arguments[next++];

    if (value.isEmpty())
        throw UserError (name + " needs a value; see tarvelline-render --help");

    row->take (options, value);
}

// The smallest span that reaches the shift gives the wheel its finest step.
void addShift (std::vector<Setting>& settings, double semitones)
{
    const auto range = parameterIndex (parameterId::mainRange), wheel = parameterIndex (parameterId::mainWheelPar);

    for (const auto& setting : settings)
        if (setting.parameter == range || setting.parameter == wheel)
            throw UserError ("--semitones sets mainWheelPar and mainRange: leave out --set for these");

    const auto span = std::find_if (wheelRangeTable.begin(), wheelRangeTable.end(),
                                    [&] (double s) { return s / 2.0 >= std::abs (semitones); });
    const auto selector = static_cast<float> (span - wheelRangeTable.begin());

    settings.push_back ({ range, selector / parameterTable[static_cast<std::size_t> (range)].rangeEnd });
    settings.push_back ({ wheel, static_cast<float> (0.5 + semitones / *span) });
}

Options::Action actionFor (const juce::StringArray& arguments)
{
    return arguments.contains ("--help") || arguments.contains ("-h") ? Options::Action::showHelp
           : arguments.contains ("--version")                         ? Options::Action::showVersion
           : arguments.contains ("--preset-list")                     ? Options::Action::listPresets
                                                                      : Options::Action::render;
}

// IN OUT, or any number of IN for a folder.
void addTasks (Options& options, const juce::StringArray& files)
{
    const bool intoFolder = options.outputFolder != juce::File();

    if (files.isEmpty() && options.savedState != juce::File())
        options.action = Options::Action::saveState;
    else if (intoFolder ? files.isEmpty() : files.size() != 2)
        throw UserError ((intoFolder         ? "name at least one file, IN"
                          : files.size() < 2 ? "name two files, IN and OUT"
                                             : "more than two files: " + files[2] + " is too many without --out-dir")
                         + juce::String ("; tarvelline-render --help shows how"));
    else if (intoFolder)
        options.tasks =
            tasksInto (options.outputFolder, files, options.format.isEmpty() ? juce::String ("wav") : options.format);
    else
        options.tasks = { { soundFileNamed (files[0]), soundFileNamed (files[1]) } };
}

void checkCombinations (const Options& options)
{
    if (options.state != juce::File() && options.preset.isNotEmpty())
        throw UserError ("--state and --preset: give one of the two");

    if (options.tasks.size() > 1)
        for (const auto& [name, file] :
             { std::pair { "--plot", options.plot }, { "--save-state", options.savedState } })
            if (file != juce::File())
                throw UserError (juce::String (name) + " is for one IN: leave it out with several");

    if (! options.tasks.empty()) // throws when they do not fit together
        sampleBits (fileKind (options.tasks.front().output, options.format), options.bits);
}
} // namespace

Options parseOptions (const juce::StringArray& arguments)
{
    Options options;
    options.action = actionFor (arguments);

    if (options.action == Options::Action::showHelp || options.action == Options::Action::showVersion)
        return options;

    juce::StringArray files;

    for (int next = 0; next < arguments.size();)
        if (arguments[next] == "--preset-list")
            ++next;
        else if (arguments[next].startsWithChar ('-') && arguments[next] != "-")
            takeOption (options, arguments, next);
        else
            files.add (arguments[next++]);

    if (options.semitones)
        addShift (options.settings, *options.semitones);

    if (options.action == Options::Action::render)
        addTasks (options, files);

    checkCombinations (options);
    return options;
}
} // namespace tarvelline::render
