// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Options.h"
#include "render/running/HostedModule.h"

#include <vector>

namespace tarvelline::render
{
/** As many plug-ins side by side as the channels of a recording need: one takes a single channel, or two that belong
    together and so share their onsets, which keeps the stereo image. All get the same events. */
class ModuleBank
{
public:
    /** Loads them. Throws UserError when the file is no module.
        @param channelMap  what each channel is for (SF_CHANNEL_MAP_*); empty when that is not known */
    ModuleBank (const juce::File& module, int channels, const std::vector<int>& channelMap, ChannelRule);

    /** Makes them ready to play from rest, with the settings in force from the first sample on. */
    void prepare (double sampleRate, int largestBlock, const std::vector<Setting>&);

    /** Samples by which the output is late, once prepared. */
    int getLatency() const { return parts.front().module->getLatency(); }

    /** The state of each as a .vstpreset file, once prepared. */
    juce::MemoryBlock getPreset() const { return parts.front().module->getPreset(); }

    /** Plays one block of all channels in place; the buffer is as long as the block. */
    void process (juce::AudioBuffer<float>&, const Block&);

private:
    struct Part
    {
        int firstChannel = 0, channels = 0;
        std::unique_ptr<HostedModule> module;
    };

    std::vector<Part> parts;
};
} // namespace tarvelline::render
