// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Quantiser.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
const int* Quantiser::convert (const std::vector<float>& samples)
{
    const auto fullScale = std::ldexp (1.0, bits - 1); // in steps
    const auto dithered = bits == 16;
    integers.clear();

    for (const auto sample : samples)
    {
        auto steps = std::isnan (sample) ? 0.0 : static_cast<double> (sample) * fullScale;

        if (dithered)
            steps += noise.nextDouble() - noise.nextDouble();

        const auto rounded = std::clamp (std::round (steps), -fullScale, fullScale - 1.0);
        integers.push_back (static_cast<int> (rounded) * (1 << (32 - bits)));
    }

    return integers.data();
}
} // namespace tarvelline::render
