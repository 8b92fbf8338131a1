// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/events/Timeline.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

namespace tarvelline::render
{
/** The built plug-in module, loaded and driven through its VST3 interface as a host does. Message thread only. */
class HostedModule
{
public:
    /** Throws UserError when the file is no module, or another plug-in's. */
    explicit HostedModule (const juce::File& file);

    /** Makes it ready to play from rest, with the settings in force from the first sample on.
        @param channels  1 or 2, in and out */
    void prepare (double sampleRate, int channels, int largestBlock, const std::vector<Setting>&);

    /** Samples by which the output is late, once prepared. */
    int getLatency() const { return instance->getLatencySamples(); }

    /** The module's state as a .vstpreset file, once prepared. Throws UserError when it gives none. */
    juce::MemoryBlock getPreset() const;

    /** Plays one block in place; the buffer is as long as the block. */
    void process (juce::AudioBuffer<float>&, const Block&);

private:
    void apply (const std::vector<Setting>&);
    void verifyParameters (const juce::File&) const;

    juce::VST3PluginFormat format;
    std::unique_ptr<juce::AudioPluginInstance> instance;
};
} // namespace tarvelline::render
