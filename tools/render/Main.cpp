// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Errors.h"
#include "tools/render/Figure.h"
#include "tools/render/Files.h"
#include "tools/render/Options.h"
#include "tools/render/Renderer.h"
#include "tools/render/Terminal.h"

#include <juce_events/juce_events.h>

#include <cstdio>

using namespace tarvelline::render;

namespace
{
void printSummary (const Options& options, const WavOutput& out, double rate, int latency, const RenderResult& result)
{
    const auto seconds = static_cast<double> (out.getLength()) / rate;
    const auto peak = juce::Decibels::gainToDecibels (result.peak, -144.0f);

    std::printf (
        "%s: %.2f s, peak %.1f dBFS, latency %d samples (%.1f ms) taken out, %.1f times faster than real time\n",
        options.output.getFullPathName().toRawUTF8(), seconds, static_cast<double> (peak), latency,
        1000.0 * latency / rate, seconds / result.seconds);

    if (options.bits == 24 && result.peak > 1.0f)
        std::fprintf (stderr, "note: %.1f dB too loud for 24 bits, and clipped; 32 bits keep it\n",
                      static_cast<double> (peak));

    if (result.unplayedEvents > 0)
        std::fprintf (stderr, "note: %d events come after the end and are not played\n", result.unplayedEvents);
}

// Into a temporary file beside the plot's place, to be moved there.
void drawPlot (const Options& options, const juce::TemporaryFile& plot, const ShiftTrace& trace,
               const juce::File& rendered, int latency)
{
    const auto before = openRecording (options.input), after = openRecording (rendered);
    const auto image = drawFigure (*before, *after, options.input.getFileName(), options.output.getFileName(),
                                   trace.getPoints(), latency);
    juce::FileOutputStream stream (plot.getFile());

    if (stream.failedToOpen() || ! juce::PNGImageFormat().writeImageToStream (image, stream))
        throw UserError ("--plot: cannot write " + options.plot.getFullPathName());

    stream.flush();

    if (stream.getStatus().failed())
        throw UserError ("--plot: cannot write all of " + options.plot.getFullPathName() + "; is the disk full?");
}

void render (Options options)
{
    checkTargets (options);
    const auto in = openRecording (options.input);
    const auto changes =
        options.automation == juce::File() ? std::vector<TimedSetting>() : readAutomation (options.automation);
    const auto messages = options.midi == juce::File() ? std::vector<TimedMessage>() : readMidi (options.midi);

    const auto channels = static_cast<int> (in->numChannels);
    HostedModule module (options.module);
    module.prepare (in->sampleRate, channels, options.blockSize, options.settings);

    std::optional<ShiftTrace> trace;
    std::optional<juce::TemporaryFile> plot;

    if (options.plot != juce::File())
    {
        trace.emplace (in->sampleRate, options.settings);
        plot.emplace (options.plot);
    }

    WavOutput out (options.output, in->sampleRate, channels, options.bits);
    const auto result = renderRecording (*in, module, { changes, messages, in->sampleRate }, options.blockSize, out,
                                         [&] (const Block& block)
                                         {
                                             if (trace)
                                                 trace->play (block);
                                         });
    out.finish();

    if (plot)
        drawPlot (options, *plot, *trace, out.getTemporaryFile(), module.getLatency());

    if (interrupted())
        throw Interrupted();

    out.commit();

    if (plot && ! plot->overwriteTargetFileWithTemporary())
        throw UserError ("--plot: cannot replace " + options.plot.getFullPathName());

    printSummary (options, out, in->sampleRate, module.getLatency(), result);
}

int run (const juce::StringArray& arguments)
{
    const auto options = parseOptions (arguments);

    if (options.action == Options::Action::showHelp)
        std::fputs (helpText().toRawUTF8(), stdout);
    else if (options.action == Options::Action::showVersion)
        std::puts ("tarvelline-render " TARVELLINE_VERSION);
    else
        render (options);

    return 0;
}
} // namespace

int main (int count, char** values)
{
    constexpr int failed = 2, stopped = 130; // 128 + SIGINT, as a shell reports it
    juce::StringArray arguments;

    for (int i = 1; i < count; ++i)
        arguments.add (juce::String::fromUTF8 (values[i]));

    const juce::ScopedJuceInitialiser_GUI framework; // the module's interface wants a message thread
    noteInterrupts();

    try
    {
        return run (arguments);
    }
    catch (const Interrupted&)
    {
        return stopped;
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "tarvelline-render: %s\n", error.what());
        return failed;
    }
}
