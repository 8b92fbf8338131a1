// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Renderer.h"

#include "render/options/Errors.h"
#include "render/running/Terminal.h"

namespace tarvelline::render
{
RenderResult renderRecording (Recording& in, ModuleBank& modules, Timeline timeline, int largestBlock,
                              RecordingOutput& out, const std::function<void (const Block&)>& observe)
{
    const auto latency = modules.getLatency();
    const auto tail = latency;
    const auto end = in.lengthInSamples + tail + latency;
    const auto began = juce::Time::getMillisecondCounterHiRes();

    juce::AudioBuffer<float> buffer (static_cast<int> (in.numChannels), largestBlock);
    RenderResult result;

    for (std::int64_t position = 0; position < end;)
    {
        if (interrupted())
            throw Interrupted();

        const auto block =
            timeline.blockAt (position, static_cast<int> (juce::jmin<std::int64_t> (largestBlock, end - position)));
        buffer.setSize (buffer.getNumChannels(), block.length, false, false, true);
        in.read (&buffer, 0, block.length, position, true, true); // past its end comes silence
        modules.process (buffer, block);

        const auto skip = static_cast<int> (juce::jlimit<std::int64_t> (0, block.length, latency - position));
        out.append (buffer, skip, block.length - skip);
        result.peak = juce::jmax (result.peak, buffer.getMagnitude (skip, block.length - skip));
        observe (block);
        position += block.length;
    }

    result.seconds = (juce::Time::getMillisecondCounterHiRes() - began) / 1000.0;
    result.unplayedEvents = timeline.eventsFrom (end);
    return result;
}
} // namespace tarvelline::render
