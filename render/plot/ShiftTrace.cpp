// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/ShiftTrace.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
namespace
{
constexpr std::size_t mostPoints = 4096;
constexpr int finest = 64; // samples: 1.5 ms at 44.1 kHz

void applySettings (juce::AudioProcessor& processor, const std::vector<Setting>& settings)
{
    for (const auto& setting : settings)
        processor.getParameters()[setting.parameter]->setValueNotifyingHost (setting.value);
}

void include (ShiftTrace::Point& point, const ShiftTrace::Point& other)
{
    for (std::size_t i = 0; i < point.size(); ++i)
        point[i].include (other[i]);
}
} // namespace

void ShiftTrace::Reach::include (const Reach& other) noexcept
{
    low = std::fmin (low, other.low); // the number, if the other is none
    high = std::fmax (high, other.high);
}

ShiftTrace::ShiftTrace (double sampleRate, const std::vector<Setting>& settings) : interval (finest)
{
    // Prepared first, as the module is: a wheel that has its span follows the settings as the module's does.
    processor.prepareToPlay (sampleRate, finest);
    applySettings (processor, settings);
    processor.prepareToPlay (sampleRate, finest);
}

void ShiftTrace::play (const Block& block)
{
    applySettings (processor, block.settings);
    auto midi = block.midi;

    for (int played = 0; played < block.length;)
    {
        const auto length =
            static_cast<int> (std::min<std::int64_t> (interval - position % interval, block.length - played));
        juce::AudioBuffer<float> silence (1, length);
        silence.clear();
        processor.processBlock (silence, midi); // empties `midi`
        played += length;
        position += length;
        note (now());
    }
}

ShiftTrace::Point ShiftTrace::now() const
{
    const float wheel = processor.mainWheel.semitones;
    Point point;

    if (processor.midiTransposeMode)
        point.front() = { wheel, wheel };
    else
        for (std::size_t i = 0; i < point.size(); ++i)
            if (const auto& slot = processor.voices.slots[i]; slot.active && slot.level > 0.0f)
                point[i] = { wheel + slot.semitones, wheel + slot.semitones };

    return point;
}

void ShiftTrace::note (const Point& point)
{
    if (position > static_cast<std::int64_t> (points.size()) * interval)
        points.push_back (point);
    else if (interval == finest) // close enough for the state at its end alone
        points.back() = point;
    else
        include (points.back(), point);

    if (points.size() == mostPoints && position % interval == 0)
        halve();
}

void ShiftTrace::halve()
{
    for (std::size_t i = 0; i < mostPoints / 2; ++i)
    {
        points[i] = points[2 * i];
        include (points[i], points[2 * i + 1]);
    }

    points.resize (mostPoints / 2);
    interval *= 2;
}
} // namespace tarvelline::render
