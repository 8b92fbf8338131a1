// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/ModuleBank.h"

#include <sndfile.h>

#include <algorithm>
#include <array>

namespace tarvelline::render
{
namespace
{
// The library's number for a right channel is the one after its left.
bool isPair (int left, int right)
{
    constexpr std::array lefts { SF_CHANNEL_MAP_LEFT,         SF_CHANNEL_MAP_FRONT_LEFT,
                                 SF_CHANNEL_MAP_REAR_LEFT,    SF_CHANNEL_MAP_FRONT_LEFT_OF_CENTER,
                                 SF_CHANNEL_MAP_SIDE_LEFT,    SF_CHANNEL_MAP_TOP_FRONT_LEFT,
                                 SF_CHANNEL_MAP_TOP_REAR_LEFT };
    return right == left + 1 && std::find (lefts.begin(), lefts.end(), left) != lefts.end();
}
} // namespace

ModuleBank::ModuleBank (const juce::File& module, int channels, const std::vector<int>& channelMap, ChannelRule rule)
{
    const bool byMap = rule == ChannelRule::byMap && channels > 2 && ! channelMap.empty();

    for (int first = 0; first < channels;)
    {
        const auto place = static_cast<std::size_t> (first);
        const bool paired = first + 1 < channels && rule != ChannelRule::single
                            && (! byMap || isPair (channelMap[place], channelMap[place + 1]));
        parts.push_back ({ first, paired ? 2 : 1, std::make_unique<HostedModule> (module) });
        first += parts.back().channels;
    }
}

void ModuleBank::prepare (double sampleRate, int largestBlock, const std::vector<Setting>& settings)
{
    for (auto& part : parts)
        part.module->prepare (sampleRate, part.channels, largestBlock, settings);
}

void ModuleBank::process (juce::AudioBuffer<float>& buffer, const Block& block)
{
    for (auto& part : parts)
    {
        juce::AudioBuffer<float> channels (buffer.getArrayOfWritePointers() + part.firstChannel, part.channels,
                                           buffer.getNumSamples());
        part.module->process (channels, block);
    }
}
} // namespace tarvelline::render
