// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/LowSpectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tarvelline::render
{
LowSpectrum::LowSpectrum (int length, int bins)
    : parts (std::max (1, length / HartleyTables::longest)), transform (length / parts),
      part (static_cast<std::size_t> (transform.getLength())), first (part.size()), second (part.size()),
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

void LowSpectrum::addPower (const std::vector<float>& samples, double scale, std::vector<double>& power)
{
    std::fill (real.begin(), real.end(), 0.0f);
    std::fill (imaginary.begin(), imaginary.end(), 0.0f);
    const auto step = static_cast<std::size_t> (parts);

    for (std::size_t d = 0; d < step; ++d)
    {
        for (std::size_t i = 0; i < part.size(); ++i)
            part[i] = samples[i * step + d];

        addPart (d);
    }

    // A pair is sqrt (2) times as long as its coefficient.
    for (std::size_t k = 0; k < real.size(); ++k)
        power[k] +=
            0.5 * scale * (static_cast<double> (real[k]) * real[k] + static_cast<double> (imaginary[k]) * imaginary[k]);
}

void LowSpectrum::addPart (std::size_t which)
{
    transform.forward (part.data());
    const auto size = part.size(), half = size / 2;

    // Real data: the upper half of a spectrum mirrors the lower, and mirrored a pair is the other way round. The pairs of 0 Hz
    // and of the middle hold one real value each, which turned by 45 degrees is both members.
    first[0] = second[0] = part[0];
    first[half] = second[half] = part[half];

    for (std::size_t k = 1; k < half; ++k)
    {
        first[k] = second[size - k] = part[k];
        second[k] = first[size - k] = part[half + k];
    }

    const auto* c = cosines.data() + which * real.size();
    const auto* s = sines.data() + which * real.size();

    for (std::size_t k = 0; k < real.size(); ++k)
    {
        real[k] += c[k] * first[k] - s[k] * second[k];
        imaginary[k] += c[k] * second[k] + s[k] * first[k];
    }
}
} // namespace tarvelline::render
