// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/events/Events.h"

#include <cstdint>
#include <utility>

namespace tarvelline::render
{
/** One call of the plug-in: what changes before its first sample, and how many samples it has. */
struct Block
{
    std::int64_t start = 0; // sample from the start of the recording
    int length = 0;
    std::vector<Setting> settings;
    juce::MidiBuffer midi; // at most one message, at sample 0
};

/** Cuts the time into blocks so that every event falls on a block's first sample, where the plug-in takes it.

    A MIDI message has a block of its own: the plug-in takes one a sample and a host hands on one bend a block, so of
    messages at the same time each comes one sample after the one before. A bend's block is one sample long, for the bend
    is heard from the next block on.

    A parameter on its way in a straight line is set every 32 samples (0.7 ms at 44.1 kHz), wherever blocks begin. */
class Timeline
{
public:
    Timeline (const std::vector<TimedSetting>&, const std::vector<TimedMessage>&, double sampleRate);

    /** The block that begins at a sample; call it with the end of the block before.
        @param largest  samples, 1 or more */
    Block blockAt (std::int64_t start, int largest);

    /** Events that fall on this sample or later. */
    int eventsFrom (std::int64_t sample) const;

private:
    struct Line
    {
        std::int64_t start = 0, end = 0;
        int parameter = 0;
        float from = 0.0f, to = 0.0f;
    };

    void addLines (const std::vector<TimedSetting>&);
    std::int64_t followLines (Block&, std::int64_t end);

    std::vector<std::pair<std::int64_t, Setting>> settings;
    std::vector<std::pair<std::int64_t, juce::MidiMessage>> messages;
    std::vector<Line> lines, running; // in order of start; those that a block has met, and not yet left
    std::size_t nextSetting = 0, nextMessage = 0, nextLine = 0;
};
} // namespace tarvelline::render
