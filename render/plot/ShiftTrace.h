// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/TarvellineAudioProcessor.h"
#include "render/events/Timeline.h"

#include <array>
#include <vector>

namespace tarvelline::render
{
/** Finds out which shifts sound when. A module does not tell; so a processor of this program plays the same blocks, on
    silence, for its wheel and voices to be read every 256 samples. */
class ShiftTrace
{
public:
    static constexpr int interval = 256; // samples

    /** In semitones: the wheel's shift alone (first of the eight), or in voice mode the shift of each voice, the wheel's
        added. NaN for one that does not sound. */
    using Point = std::array<float, voiceCount>;

    ShiftTrace (double sampleRate, const std::vector<Setting>&);

    /** Plays on; call it with every block, in order. */
    void play (const Block&);

    /** Point i is the state after (i + 1) * interval samples. */
    const std::vector<Point>& getPoints() const { return points; }

private:
    void notePoint();

    TarvellineAudioProcessor processor;
    std::vector<Point> points;
    std::int64_t position = 0;
};
} // namespace tarvelline::render
