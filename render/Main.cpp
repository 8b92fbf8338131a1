// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Errors.h"
#include "render/options/Options.h"
#include "render/running/FindModule.h"
#include "render/running/Presets.h"
#include "render/running/RenderFile.h"
#include "render/running/Terminal.h"
#include "render/running/Workers.h"
#include "render/sound/Pipes.h"

#include <algorithm>
#include <cstdio>
#include <functional>

using namespace tarvelline::render;

namespace
{
enum ExitCode
{
    done = 0,
    someFailed = 1,
    failed = 2,
    stopped = 130 // 128 + SIGINT, as a shell reports it
};

int guarded (const char* prefix, const std::function<void()>& work)
{
    try
    {
        work();
        return done;
    }
    catch (const Interrupted&)
    {
        return stopped;
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "%s%s\n", prefix, error.what());
        return failed;
    }
}

juce::String describe (const WorkOutcome& outcome)
{
    switch (outcome.exitCode)
    {
        case done: return "written";
        case failed: return "failed";
        case -1:
        case stopped: return "stopped";
        default: return "crashed (" + juce::String (outcome.exitCode) + ")";
    }
}

// One line a file, and what it printed.
void printTable (const Options& options, const std::vector<WorkOutcome>& outcomes)
{
    std::size_t widest = 0, written = 0;

    for (const auto& task : options.tasks)
        widest = std::max (widest, static_cast<std::size_t> (task.input.getFileName().length()));

    for (std::size_t i = 0; i < outcomes.size(); ++i)
    {
        const auto name = options.tasks[i].input.getFileName();
        auto lines = juce::StringArray::fromLines (juce::String::fromUTF8 (outcomes[i].text.c_str()));
        lines.removeEmptyStrings();
        written += outcomes[i].exitCode == done;
        const auto line = name.paddedRight (' ', static_cast<int> (widest)) + "  "
                          + describe (outcomes[i]).paddedRight (' ', 7) + "  " + lines.joinIntoString ("\n    ");
        std::puts (line.trimEnd().toRawUTF8());
    }

    std::printf ("%d of %d files written\n", static_cast<int> (written), static_cast<int> (outcomes.size()));
}

int renderAll (const Options& options)
{
    const auto count = static_cast<int> (options.tasks.size());
    const auto work = [&] (int i)
    { return guarded ("", [&] { renderFile (options, options.tasks[static_cast<std::size_t> (i)]); }); };
    std::vector<WorkOutcome> outcomes;

    {
        Progress progress;
        outcomes = runWorkers (count, options.jobs, work, [&] (int finished) { progress.show (finished, count); });
    }

    printTable (options, outcomes);

    if (interrupted())
        return stopped;

    return std::all_of (outcomes.begin(), outcomes.end(), [] (const auto& o) { return o.exitCode == done; })
               ? done
               : someFailed;
}

void listPresets (const Options& options)
{
    const auto presets = findPresets (findModule (options.module));

    for (const auto& preset : presets)
        std::printf ("%s  %s\n", preset.getFileNameWithoutExtension().paddedRight (' ', 24).toRawUTF8(),
                     preset.getFullPathName().toRawUTF8());

    if (presets.empty())
        std::fputs ("no presets are installed\n", stderr);
}

int run (const Options& options)
{
    switch (options.action)
    {
        case Options::Action::showHelp: std::fputs (helpText().toRawUTF8(), stdout); break;
        case Options::Action::showVersion: std::puts ("tarvelline-render " TARVELLINE_VERSION); break;
        case Options::Action::listPresets: listPresets (options); break;
        case Options::Action::saveState: saveStateOnly (options); break;
        case Options::Action::render:
            if (options.tasks.size() > 1)
                return renderAll (options);

            renderFile (options, options.tasks.front());
    }

    return done;
}
} // namespace

int main (int count, char** values)
{
    occupyClosedStreams();
    juce::StringArray arguments;

    for (int i = 1; i < count; ++i)
        arguments.add (juce::String::fromUTF8 (values[i]));

    noteInterrupts();
    int code = done;
    const auto failure = guarded ("tarvelline-render: ", [&] { code = run (parseOptions (arguments)); });
    return failure != done ? failure : code;
}
