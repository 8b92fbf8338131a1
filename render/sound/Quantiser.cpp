// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Quantiser.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
const int** Quantiser::convert (const juce::AudioBuffer<float>& buffer, int start, int count)
{
    const auto fullScale = std::ldexp (1.0, bits - 1); // in steps
    const auto dithered = bits == 16;

    for (int channel = 0; channel < buffer.getNumChannels(); ++channel)
    {
        auto& made = samples[static_cast<std::size_t> (channel)];
        made.clear();

        for (int i = start; i < start + count; ++i)
        {
            const auto sample = buffer.getSample (channel, i);
            auto steps = std::isnan (sample) ? 0.0 : static_cast<double> (sample) * fullScale;

            if (dithered)
                steps += noise.nextDouble() - noise.nextDouble();

            const auto rounded = std::clamp (std::round (steps), -fullScale, fullScale - 1.0);
            made.push_back (static_cast<int> (rounded) * (1 << (32 - bits)));
        }

        channels[static_cast<std::size_t> (channel)] = made.data();
    }

    return channels.data();
}
} // namespace tarvelline::render
