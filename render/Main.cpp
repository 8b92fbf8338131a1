// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Main.h"

#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/options/Options.h"
#include "render/running/FindModule.h"
#include "render/running/Presets.h"
#include "render/running/RenderBatch.h"
#include "render/running/RenderFile.h"
#include "render/running/Terminal.h"
#include "render/sound/SystemFiles.h"

#include <cstdio>

namespace tarvelline::render
{
namespace
{
void listPresets (const Options& options)
{
    const auto presets = findPresets (findModule (options.module));

    for (const auto& preset : presets)
        std::printf ("%s  %s\n", preset.getFileNameWithoutExtension().paddedRight (' ', 24).toRawUTF8(),
                     preset.getFullPathName().toRawUTF8());

    if (presets.empty())
        std::fputs ("no presets are installed\n", stderr);
}

void leaveOutWhatIsThere (Options& options)
{
    std::erase_if (options.tasks,
                   [&] (const Task& task)
                   {
                       const auto isThere = task.output.existsAsFile();

                       if (isThere && ! options.quiet)
                           std::fprintf (stderr, "note: %s is there already and stays as it is\n",
                                         task.output.getFullPathName().toRawUTF8());

                       return isThere;
                   });
}

int render (Options options)
{
    if (options.noClobber)
        leaveOutWhatIsThere (options);

    if (options.outputFolder != juce::File())
        for (const auto& task : options.tasks)
            makeFolderFor (task);

    if (options.tasks.size() > 1)
        return renderBatch (options);

    for (const auto& task : options.tasks)
        renderFile (options, task);

    return exitDone;
}

int run (const Options& options)
{
    switch (options.action)
    {
        case Options::Action::showHelp: std::fputs (helpText().toRawUTF8(), stdout); break;
        case Options::Action::showVersion: std::puts ("tarvelline-render " TARVELLINE_VERSION); break;
        case Options::Action::listPresets: listPresets (options); break;
        case Options::Action::saveState: saveStateOnly (options); break;
        case Options::Action::render: return render (options);
    }

    return exitDone;
}
} // namespace

int runProgram (const juce::StringArray& arguments)
{
    prepareStreams();

    // Whoever runs a worker names the program and the file.
    const bool isWorker = arguments.contains ("--worker");
    leaveDisplayAlone();
    noteInterrupts (isWorker);

    try
    {
        return run (parseOptions (arguments));
    }
    catch (const Interrupted&)
    {
        return exitStopped;
    }
    catch (const std::exception& error)
    {
        if (interrupted()) // and what waited has failed for that
            return exitStopped;

        std::fprintf (stderr, "%s%s\n", isWorker ? "" : "tarvelline-render: ", error.what());
        return exitFailed;
    }
}
} // namespace tarvelline::render
