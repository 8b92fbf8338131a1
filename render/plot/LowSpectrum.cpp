// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/LowSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvelline::render
{
LowSpectrum::LowSpectrum (int length, int bins)
    : parts (std::max (1, length / HartleyTables::longest)), transform (length / parts),
      part (static_cast<std::size_t> (transform.getLength())),
      real (static_cast<std::size_t> (std::min ({ bins, length / 2, transform.getLength() }))), imaginary (real.size())
{
    for (int d = 0; d < parts; ++d)
        for (std::size_t k = 0; k < real.size(); ++k)
        {
            const auto angle = -2.0 * std::numbers::pi * d * static_cast<double> (k) / length;
            cosines.push_back (static_cast<float> (std::cos (angle)));
            sines.push_back (static_cast<float> (std::sin (angle)));
        }
}

void LowSpectrum::addPower (const std::vector<float>& samples, float scale, std::vector<float>& power)
{
    std::fill (real.begin(), real.end(), 0.0f);
    std::fill (imaginary.begin(), imaginary.end(), 0.0f);
    const auto step = static_cast<std::size_t> (parts), given = samples.size() / step;

    for (std::size_t d = 0; d < step; ++d)
    {
        for (std::size_t i = 0; i < given; ++i)
            part[i] = samples[i * step + d];

        std::fill (part.begin() + static_cast<std::ptrdiff_t> (given), part.end(), 0.0f);
        transform.forward (part.data());
        addPart (d);
    }

    // A pair is sqrt (2) times as long as its coefficient.
    for (std::size_t k = 0; k < real.size(); ++k)
        power[k] += 0.5f * scale * (real[k] * real[k] + imaginary[k] * imaginary[k]);
}

void LowSpectrum::addPart (std::size_t which)
{
    const auto size = part.size(), half = size / 2, bins = real.size();
    const auto* c = cosines.data() + which * bins;
    const auto* s = sines.data() + which * bins;

    const auto add = [&] (std::size_t k, float first, float second)
    {
        real[k] += c[k] * first - s[k] * second;
        imaginary[k] += c[k] * second + s[k] * first;
    };

    // The pairs of 0 Hz and of the middle hold one real value each, which turned by 45 degrees is both members.
    add (0, part[0], part[0]);

    for (std::size_t k = 1; k < std::min (half, bins); ++k)
        add (k, part[k], part[half + k]);

    if (half < bins)
        add (half, part[half], part[half]);

    // Real data: the upper half of a spectrum mirrors the lower, and mirrored a pair is the other way round.
    for (std::size_t k = half + 1; k < bins; ++k)
        add (k, part[size + half - k], part[size - k]);
}
} // namespace tarvelline::render
