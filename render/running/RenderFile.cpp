// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/RenderFile.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/plot/Figure.h"
#include "render/running/FindModule.h"
#include "render/running/Presets.h"
#include "render/running/Renderer.h"
#include "render/running/StateFile.h"
#include "render/running/Terminal.h"
#include "render/sound/Pipes.h"

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

void readPipe (NewFile& file)
{
    writeWhole (file,
                [] (juce::OutputStream& stream)
                {
                    copyFromInput (stream);
                    return true;
                });
}

void writeState (NewFile& file, const ModuleBank& module)
{
    const auto state = module.getPreset();
    writeWhole (file, [&] (juce::OutputStream& stream) { return stream.write (state.getData(), state.getSize()); });
}

// What messages call a file, or what stands for it; and what pictures do.
juce::String pathOr (const char* pipe, const juce::File& file)
{
    return file == juce::File() ? juce::String (pipe) : file.getFullPathName();
}

juce::String nameOr (const char* pipe, const juce::File& file)
{
    return file == juce::File() ? juce::String (pipe) : file.getFileName();
}

void printSummary (const Task& task, int bits, const RecordingOutput& out, double rate, int latency,
                   const RenderResult& result)
{
    auto* const messages = task.output == juce::File() ? stderr : stdout;
    const auto seconds = static_cast<double> (out.getLength()) / rate;
    const auto peak = juce::Decibels::gainToDecibels (result.peak, -144.0f);

    std::fprintf (
        messages,
        "%s: %.2f s, peak %.1f dBFS, latency %d samples (%.1f ms) taken out, %.1f times faster than real time\n",
        pathOr ("standard output", task.output).toRawUTF8(), seconds, static_cast<double> (peak), latency,
        1000.0 * latency / rate, seconds / result.seconds);

    if (bits < 32 && result.peak > 1.0f)
        std::fprintf (stderr, "note: %.1f dB too loud for %d bits, and clipped; 32 bits keep it\n",
                      static_cast<double> (peak), bits);

    if (result.unplayedEvents > 0)
        std::fprintf (stderr, "note: %d events come after the end and are not played\n", result.unplayedEvents);
}

Source sourceOf (juce::AudioFormatReader& reader)
{
    return { reader.sampleRate, static_cast<int> (reader.numChannels), reader.lengthInSamples,
             [&reader] (juce::AudioBuffer<float>& buffer, int at, int count, std::int64_t position)
             { reader.read (&buffer, at, count, position, true, true); } };
}

void drawPlot (const Task& task, NewFile& plot, const ShiftTrace& trace, Recording& before, const juce::File& rendered,
               int latency)
{
    Recording after (rendered, rendered.getFullPathName());
    const auto image = drawFigure (sourceOf (before), sourceOf (after), nameOr ("standard input", task.input),
                                   nameOr ("standard output", task.output), trace, latency);
    writeWhole (plot,
                [&] (juce::OutputStream& stream) { return juce::PNGImageFormat().writeImageToStream (image, stream); });
}
/** What is played, beside the recording. */
struct Performance
{
    explicit Performance (const Options& options) : settings (startingSettings (options))
    {
        if (options.automation != juce::File())
            changes = readAutomation (options.automation);

        if (options.midi != juce::File())
            messages = readMidi (options.midi);

        applyRanges (changes, settings);
    }

    std::vector<Setting> settings; // from the first sample on
    std::vector<TimedSetting> changes;
    std::vector<TimedMessage> messages;
};

RenderResult play (const Options& options, Recording& in, ModuleBank& modules, const Performance& performance,
                   RecordingOutput& out, ShiftTrace* trace)
{
    Progress progress (! options.quiet && ! options.isWorker);
    const auto observe = [&] (const Block& block)
    {
        progress.show (block.start, in.lengthInSamples);

        if (trace != nullptr)
            trace->play (block);
    };
    const auto result = renderRecording (in, modules, { performance.changes, performance.messages, in.sampleRate },
                                         options.blockSize, out, observe);
    out.finish();
    return result;
}
} // namespace

void renderFile (const Options& asked, Task task)
{
    const juce::ScopedJuceInitialiser_GUI framework; // the module's interface wants a message thread
    auto options = asked;
    checkTargets (options, task);
    const auto& kind = fileKind (task.output, options.format);
    const auto bits = sampleBits (kind, options.bits);
    std::optional<NewFile> piped, plot, state;

    if (task.input == juce::File())
        readPipe (piped.emplace ("IN", fileForPipe()));

    Recording in (piped ? piped->getTemporaryFile() : task.input, pathOr ("the standard input", task.input));
    Performance performance (options);
    const auto& settings = performance.settings;
    ModuleBank modules (findModule (options.module), static_cast<int> (in.numChannels), in.getChannelMap(),
                        options.channels);
    modules.prepare (in.sampleRate, options.blockSize, settings);

    if (options.alignSound)
        alignToSound (performance.changes, performance.messages, modules.getLatency() / in.sampleRate,
                      playsVoices (settings));

    if (options.verbose)
        tellSettings (options, settings);

    if (options.savedState != juce::File())
        writeState (state.emplace ("--save-state", options.savedState), modules);

    std::optional<ShiftTrace> trace;

    if (options.plot != juce::File())
        trace.emplace (in.sampleRate, settings);

    RecordingOutput out (task.output, kind, bits, in);
    const auto result = play (options, in, modules, performance, out, trace ? &*trace : nullptr);

    if (trace)
        drawPlot (task, plot.emplace ("--plot", options.plot), *trace, in, out.getTemporaryFile(),
                  modules.getLatency());

    if (interrupted())
        throw Interrupted();

    out.commit();

    for (auto* file : { &plot, &state })
        if (*file)
            (*file)->commit();

    if (! options.quiet)
        printSummary (task, bits, out, in.sampleRate, modules.getLatency(), result);
}

void saveStateOnly (const Options& asked)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    auto options = asked;
    Task none;
    checkTargets (options, none);

    constexpr double anyRate = 44100.0; // a state is the same at every rate
    ModuleBank module (findModule (options.module), 2, {}, ChannelRule::pairs);
    module.prepare (anyRate, options.blockSize, startingSettings (options));

    NewFile state ("--save-state", options.savedState);
    writeState (state, module);
    state.commit();

    if (! options.quiet)
        std::printf ("%s: written\n", options.savedState.getFullPathName().toRawUTF8());
}
} // namespace tarvelline::render
