// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>
#include <functional>
#include <map>
#include <vector>

namespace tarvelline::test
{
/** One golden case: a script, its input, and what must come out. tests/golden/README.md describes the files. */
class VectorCase
{
public:
    /** Throws a std::exception for a case that is incomplete or malformed. */
    explicit VectorCase (const juce::String& name);

    /** Plays the script through a processor, or a module in a host, whose bus layout fits, and expects the output to agree.
        @param afterBlock  told after each block how many samples are played by then */
    void expectSound (
        juce::AudioProcessor&, const std::function<void (int)>& afterBlock = [] (int) {}) const;

    const juce::String name;
    double rate = 0.0;
    int channels = 0;
    std::map<int, std::array<double, 4>>
        motion; // by sample: the main wheel's target, follower, point, velocity after it
    juce::MemoryBlock state;

private:
    struct Event
    {
        int block; // -1: before the first prepareToPlay
        juce::StringArray words;
    };

    std::vector<float> play (juce::AudioProcessor&, const std::function<void (int)>& afterBlock) const;

    int length = 0; // samples a channel
    std::vector<int> blockSizes;
    std::vector<Event> events;
    std::vector<float> input, expected; // interleaved
};
} // namespace tarvelline::test
