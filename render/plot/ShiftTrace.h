// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/TarvellineAudioProcessor.h"
#include "render/events/Timeline.h"

#include <array>
#include <limits>
#include <vector>

namespace tarvelline::render
{
/** Finds out which shifts sound when. A module does not tell; so a processor of this program plays the same blocks, on
    silence, for its wheel and voices to be read. What it keeps is finer than a picture shows, and bounded: 4096 points (256 KB)
    at most, which then cover twice the time each. */
class ShiftTrace
{
public:
    /** In semitones; not numbers when nothing sounds. */
    struct Reach
    {
        float low = std::numeric_limits<float>::quiet_NaN(), high = low;

        void include (const Reach&) noexcept;
    };

    /** How far shifts reach in a time: the wheel's alone (first of the eight), or in voice mode that of each voice, the
        wheel's added. */
    using Point = std::array<Reach, voiceCount>;

    ShiftTrace (double sampleRate, const std::vector<Setting>&);

    /** Plays on; call it with every block, in order. */
    void play (const Block&);

    /** Point i is of the samples from i * interval on, its end the last of them. */
    const std::vector<Point>& getPoints() const { return points; }

    /** Samples that a point covers. */
    std::int64_t getInterval() const { return interval; }

private:
    Point now() const;
    void note (const Point&);
    void halve();

    TarvellineAudioProcessor processor;
    std::vector<Point> points;
    std::int64_t position = 0, interval;
};
} // namespace tarvelline::render
