// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/RenderFile.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/plot/Figure.h"
#include "render/running/FindModule.h"
#include "render/running/HostedModule.h"
#include "render/running/Presets.h"
#include "render/running/Renderer.h"
#include "render/running/StateFile.h"
#include "render/running/Terminal.h"
#include "render/sound/Recording.h"

#include <juce_events/juce_events.h>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace tarvelline::render
{
namespace
{
// A state first, then what was set one by one: a value for each parameter that has one, in the table's order, in which a
// host hands them on.
std::vector<Setting> startingSettings (const Options& options)
{
    std::vector<Setting> given;

    if (options.state != juce::File())
        given = readState (options.state);
    else if (options.preset.isNotEmpty())
        given = readState (presetNamed (options.preset, findModule (options.module)));

    given.insert (given.end(), options.settings.begin(), options.settings.end());
    std::vector<Setting> settings;

    for (int i = 0; i < static_cast<int> (parameterTable.size()); ++i)
        if (const auto last = std::find_if (given.rbegin(), given.rend(),
                                            [i] (const Setting& setting) { return setting.parameter == i; });
            last != given.rend())
            settings.push_back (*last);

    return settings;
}

bool playsVoices (const std::vector<Setting>& settings)
{
    const auto notes = parameterIndex (parameterId::midiOptions);
    return std::any_of (settings.begin(), settings.end(),
                        [=] (const auto& setting) { return setting.parameter == notes && setting.value == 0.0f; });
}

void tellSettings (const Options& options, const std::vector<Setting>& settings)
{
    juce::StringArray words;

    for (const auto& setting : settings)
        words.add (juce::String (parameterTable[static_cast<std::size_t> (setting.parameter)].id) + "="
                   + juce::String (setting.value));

    std::fprintf (stderr, "plug-in %s, settings: %s\n", findModule (options.module).getFullPathName().toRawUTF8(),
                  words.isEmpty() ? "as it comes" : words.joinIntoString (" ").toRawUTF8());
}

void writeWhole (NewFile& file, const std::function<bool (juce::OutputStream&)>& write)
{
    auto stream = file.open();
    const bool written = write (*stream);
    stream.reset();
    file.check();

    if (! written)
        throw UserError ("cannot write " + file.getTemporaryFile().getFullPathName());
}

void writeState (NewFile& file, const HostedModule& module)
{
    const auto state = module.getPreset();
    writeWhole (file, [&] (juce::OutputStream& stream) { return stream.write (state.getData(), state.getSize()); });
}

void printSummary (const Task& task, int bits, const RecordingOutput& out, double rate, int latency,
                   const RenderResult& result)
{
    const auto seconds = static_cast<double> (out.getLength()) / rate;
    const auto peak = juce::Decibels::gainToDecibels (result.peak, -144.0f);

    std::printf (
        "%s: %.2f s, peak %.1f dBFS, latency %d samples (%.1f ms) taken out, %.1f times faster than real time\n",
        task.output.getFullPathName().toRawUTF8(), seconds, static_cast<double> (peak), latency,
        1000.0 * latency / rate, seconds / result.seconds);

    if (bits < 32 && result.peak > 1.0f)
        std::fprintf (stderr, "note: %.1f dB too loud for %d bits, and clipped; 32 bits keep it\n",
                      static_cast<double> (peak), bits);

    if (result.unplayedEvents > 0)
        std::fprintf (stderr, "note: %d events come after the end and are not played\n", result.unplayedEvents);
}

void drawPlot (const Task& task, NewFile& plot, const ShiftTrace& trace, const juce::File& rendered, int latency)
{
    const auto before = openRecording (task.input), after = openRecording (rendered);
    const auto image =
        drawFigure (*before, *after, task.input.getFileName(), task.output.getFileName(), trace.getPoints(), latency);
    writeWhole (plot,
                [&] (juce::OutputStream& stream) { return juce::PNGImageFormat().writeImageToStream (image, stream); });
}
} // namespace

void renderFile (const Options& asked, Task task)
{
    const juce::ScopedJuceInitialiser_GUI framework; // the module's interface wants a message thread
    auto options = asked;
    checkTargets (options, task);
    const auto bits = sampleBits (task.output, options.bits);
    const auto in = openRecording (task.input);
    auto changes =
        options.automation == juce::File() ? std::vector<TimedSetting>() : readAutomation (options.automation);
    auto messages = options.midi == juce::File() ? std::vector<TimedMessage>() : readMidi (options.midi);
    auto settings = startingSettings (options);
    applyRanges (changes, settings);

    HostedModule module (findModule (options.module));
    module.prepare (in->sampleRate, static_cast<int> (in->numChannels), options.blockSize, settings);

    if (options.alignSound)
        alignToSound (changes, messages, module.getLatency() / in->sampleRate, playsVoices (settings));

    if (options.verbose)
        tellSettings (options, settings);

    std::optional<ShiftTrace> trace;
    std::optional<NewFile> plot, state;

    if (options.plot != juce::File())
    {
        trace.emplace (in->sampleRate, settings);
        plot.emplace ("--plot", options.plot);
    }

    if (options.savedState != juce::File())
        writeState (state.emplace ("--save-state", options.savedState), module);

    RecordingOutput out (task.output, bits, *in);
    Progress progress (! options.quiet && ! options.isWorker);
    const auto result = renderRecording (*in, module, { changes, messages, in->sampleRate }, options.blockSize, out,
                                         [&] (const Block& block)
                                         {
                                             progress.show (block.start, in->lengthInSamples);

                                             if (trace)
                                                 trace->play (block);
                                         });
    out.finish();

    if (plot)
        drawPlot (task, *plot, *trace, out.getTemporaryFile(), module.getLatency());

    if (interrupted())
        throw Interrupted();

    out.commit();

    for (auto* file : { &plot, &state })
        if (*file)
            (*file)->commit();

    if (! options.quiet)
        printSummary (task, bits, out, in->sampleRate, module.getLatency(), result);
}

void saveStateOnly (const Options& asked)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    auto options = asked;
    Task none;
    checkTargets (options, none);

    constexpr double anyRate = 44100.0; // a state is the same at every rate
    HostedModule module (findModule (options.module));
    module.prepare (anyRate, 2, options.blockSize, startingSettings (options));

    NewFile state ("--save-state", options.savedState);
    writeState (state, module);
    state.commit();

    if (! options.quiet)
        std::printf ("%s: written\n", options.savedState.getFullPathName().toRawUTF8());
}
} // namespace tarvelline::render
