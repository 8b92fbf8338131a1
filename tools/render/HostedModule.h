// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/Timeline.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <memory>

namespace tarvelline::render
{
/** The plug-in to load. Throws UserError when it is nowhere.
    @param asked  a module; juce::File() for the first found: the one built with this program, the one installed with it,
                  then those of this user and of the machine */
juce::File findModule (const juce::File& asked);

/** The built plug-in module, loaded and driven through its VST3 interface as a host does. Message thread only. */
class HostedModule
{
public:
    /** Throws UserError when there is no such module, or another plug-in in its place.
        @param asked  as for findModule() */
    explicit HostedModule (const juce::File& asked);

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
