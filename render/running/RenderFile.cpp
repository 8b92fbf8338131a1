// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/RenderFile.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"
#include "render/plot/Figure.h"
#include "render/running/FindModule.h"
#include "render/running/Performance.h"
#include "render/running/Renderer.h"
#include "render/running/Terminal.h"
#include "render/sound/Pipes.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <optional>

namespace tarvelline::render
{
namespace
{
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

/** What comes through the standard input, if that is what a task reads. */
std::unique_ptr<NewFile> readPipe (const Task& task)
{
    if (task.input != juce::File())
        return nullptr;

    auto file = std::make_unique<NewFile> ("IN", fileForPipe());
    writeWhole (*file,
                [] (juce::OutputStream& stream)
                {
                    copyFromInput (stream);
                    return true;
                });
    return file;
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

Source sourceOf (juce::AudioFormatReader& reader)
{
    return { reader.sampleRate, static_cast<int> (reader.numChannels), reader.lengthInSamples,
             [&reader] (juce::AudioBuffer<float>& buffer, int at, int count, std::int64_t position)
             { reader.read (&buffer, at, count, position, true, true); } };
}

/** One recording on its way through its plug-ins, with all that is written on it. Destroyed before commit(), it leaves every
    file as it was. Its functions come in the order in which they are called, and throw UserError. */
class Rendering
{
public:
    /** Opens what is read, and loads and prepares the plug-ins. */
    Rendering (const Options& asked, const Task& which)
        : options (asked), task (which), kind (fileKind (task.output, options.format)),
          bits (sampleBits (kind, options.bits)), piped (readPipe (task)),
          in (piped ? piped->getTemporaryFile() : task.input, pathOr ("the standard input", task.input)),
          performance (options), modules (findModule (options.module), static_cast<int> (in.numChannels),
                                          in.getChannelMap(), options.channels),
          out (task.output, kind, bits, in)
    {
        modules.prepare (in.sampleRate, options.blockSize, performance.settings);

        if (options.alignSound)
            performance.align (modules.getLatency() / in.sampleRate);

        if (options.verbose)
            tellSettings (options, performance.settings);
    }

    void saveState()
    {
        if (options.savedState != juce::File())
            writeState (state.emplace ("--save-state", options.savedState), modules);
    }

    void play()
    {
        if (options.plot != juce::File())
            trace.emplace (in.sampleRate, performance.settings);

        Progress progress (! options.quiet && ! options.isWorker);
        const auto observe = [&] (const Block& block)
        {
            progress.show (block.start, in.lengthInSamples);

            if (trace)
                trace->play (block);
        };
        result = renderRecording (in, modules, { performance.changes, performance.messages, in.sampleRate },
                                  options.blockSize, out, observe);
        out.finish();
    }

    void draw()
    {
        if (! trace)
            return;

        Recording after (out.getTemporaryFile(), out.getTemporaryFile().getFullPathName());
        const auto image = drawFigure (sourceOf (in), sourceOf (after), nameOr ("standard input", task.input),
                                       nameOr ("standard output", task.output), *trace, modules.getLatency());
        writeWhole (plot.emplace ("--plot", options.plot), [&] (juce::OutputStream& stream)
                    { return juce::PNGImageFormat().writeImageToStream (image, stream); });
    }

    void commit()
    {
        out.commit();

        for (auto* file : { &plot, &state })
            if (*file)
                (*file)->commit();
    }

    void printSummary() const;

private:
    const Options& options;
    const Task& task;
    const FileKind& kind;
    const int bits;
    const std::unique_ptr<NewFile> piped; // what came through a pipe, if that was it
    Recording in;
    Performance performance;
    ModuleBank modules;
    RecordingOutput out;
    std::optional<ShiftTrace> trace;
    std::optional<NewFile> plot, state;
    RenderResult result;
};

void Rendering::printSummary() const
{
    auto* const messages = task.output == juce::File() ? stderr : stdout;
    const auto latency = modules.getLatency();
    const auto seconds = static_cast<double> (out.getLength()) / in.sampleRate;
    const auto peak = juce::Decibels::gainToDecibels (result.peak, -144.0f);

    std::fprintf (
        messages,
        "%s: %.2f s, peak %.1f dBFS, latency %d samples (%.1f ms) taken out, %.1f times faster than real time\n",
        pathOr ("standard output", task.output).toRawUTF8(), seconds, static_cast<double> (peak), latency,
        1000.0 * latency / in.sampleRate, seconds / result.seconds);

    if (bits < 32 && result.peak > 1.0f)
        std::fprintf (stderr, "note: %.1f dB too loud for %d bits, and clipped; 32 bits keep it\n",
                      static_cast<double> (peak), bits);

    if (result.unplayedEvents > 0)
        std::fprintf (stderr, "note: %d events come after the end and are not played\n", result.unplayedEvents);
}
} // namespace

void renderFile (const Options& asked, Task task)
{
    const juce::ScopedJuceInitialiser_GUI framework; // the module's interface wants a message thread
    auto options = asked;
    checkTargets (options, task);

    Rendering rendering (options, task);
    rendering.saveState();
    rendering.play();
    rendering.draw();

    if (interrupted())
        throw Interrupted();

    rendering.commit();

    if (! options.quiet)
        rendering.printSummary();
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
