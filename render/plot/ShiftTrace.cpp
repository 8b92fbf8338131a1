// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/ShiftTrace.h"

#include <algorithm>
#include <limits>

namespace tarvelline::render
{
namespace
{
void applySettings (juce::AudioProcessor& processor, const std::vector<Setting>& settings)
{
    for (const auto& setting : settings)
        processor.getParameters()[setting.parameter]->setValueNotifyingHost (setting.value);
}
} // namespace

ShiftTrace::ShiftTrace (double sampleRate, const std::vector<Setting>& settings)
{
    // Prepared first, as the module is: a wheel that has its span follows the settings as the module's does.
    processor.prepareToPlay (sampleRate, interval);
    applySettings (processor, settings);
    processor.prepareToPlay (sampleRate, interval);
}

void ShiftTrace::play (const Block& block)
{
    applySettings (processor, block.settings);
    auto midi = block.midi;

    for (int played = 0; played < block.length;)
    {
        const auto untilPoint = interval - static_cast<int> (position % interval);
        const auto length = std::min (untilPoint, block.length - played);
        juce::AudioBuffer<float> silence (1, length);
        silence.clear();
        processor.processBlock (silence, midi); // empties `midi`
        played += length;
        position += length;

        if (position % interval == 0)
            notePoint();
    }
}

void ShiftTrace::notePoint()
{
    const float wheel = processor.mainWheel.semitones;
    Point point;
    point.fill (std::numeric_limits<float>::quiet_NaN());

    if (processor.midiTransposeMode)
        point.front() = wheel;
    else
        for (std::size_t i = 0; i < point.size(); ++i)
            if (const auto& slot = processor.voices.slots[i]; slot.active && slot.level > 0.0f)
                point[i] = wheel + slot.semitones;

    points.push_back (point);
}
} // namespace tarvelline::render
