// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/RenderBatch.h"

#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/running/Terminal.h"
#include "render/running/Workers.h"

#include <algorithm>
#include <cstdio>

namespace tarvelline::render
{
namespace
{
juce::String describe (int exitCode)
{
    switch (exitCode)
    {
        case exitDone: return "written";
        case exitFailed: return "failed";
        case Outcome::neverBegun:
        case exitStopped: return "stopped";
        default: break;
    }

    return exitCode > 128 ? "crashed (signal " + juce::String (exitCode - 128) + ")"
           : exitCode < 0 ? "crashed (0x" + juce::String::toHexString (exitCode) + ")"
                          : juce::String ("failed");
}

// With --keep-folders several may have one name.
juce::String labelOf (const Options& options, const Task& task)
{
    return options.keepFolders ? task.input.getFullPathName() : task.input.getFileName();
}

// A line for each file, with what its run printed.
void printTable (const Options& options, const std::vector<Outcome>& outcomes)
{
    int widest = 0;

    for (const auto& task : options.tasks)
        widest = std::max (widest, labelOf (options, task).length());

    for (std::size_t i = 0; i < outcomes.size(); ++i)
    {
        const bool written = outcomes[i].exitCode == exitDone;
        auto lines = juce::StringArray::fromLines (juce::String::fromUTF8 (outcomes[i].text.c_str()));
        lines.removeEmptyStrings();
        const auto line = labelOf (options, options.tasks[i]).paddedRight (' ', widest) + "  "
                          + describe (outcomes[i].exitCode).paddedRight (' ', 7) + "  "
                          + lines.joinIntoString ("\n    ");

        if (! written || ! options.quiet)
            std::fprintf (written ? stdout : stderr, "%s\n", line.trimEnd().toRawUTF8());
    }
}

int summarise (const Options& options, const std::vector<Outcome>& outcomes)
{
    const auto count = static_cast<int> (outcomes.size());
    const auto written = static_cast<int> (
        std::count_if (outcomes.begin(), outcomes.end(), [] (const auto& o) { return o.exitCode == exitDone; }));

    if (written < count || ! options.quiet)
        std::fprintf (written < count ? stderr : stdout, "%d of %d files written\n", written, count);

    return interrupted() ? exitStopped : written < count ? exitSomeFailed : exitDone;
}
} // namespace

int renderBatch (Options options)
{
    const auto count = static_cast<int> (options.tasks.size());
    const auto argumentsFor = [&] (int i)
    {
        const auto& task = options.tasks[static_cast<std::size_t> (i)];
        auto arguments = options.forWorkers;
        arguments.addArray (
            juce::StringArray { "--worker", "--", task.input.getFullPathName(), task.output.getFullPathName() });
        return arguments;
    };
    std::vector<Outcome> outcomes;

    {
        Progress progress (! options.quiet);
        outcomes =
            runWorkers (count, options.jobs, argumentsFor, [&] (int finished) { progress.show (finished, count); });
    }

    printTable (options, outcomes);
    return summarise (options, outcomes);
}
} // namespace tarvelline::render
