// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Signals.h"

#include <cmath>
#include <numbers>
#include <random>

namespace tarvelline::test
{
namespace
{
void addSine (Samples& samples, double hertz, double rate, double amplitude, double phase)
{
    const auto step = 2.0 * std::numbers::pi * hertz / rate;

    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] += static_cast<float> (amplitude * std::sin (step * static_cast<double> (i) + phase));
}
} // namespace

int lengthOf (double seconds, double rate) { return static_cast<int> (seconds * rate); }

Samples silence (int length) { return Samples (static_cast<std::size_t> (length), 0.0f); }

Samples sine (double hertz, double rate, double seconds, double amplitude)
{
    auto samples = silence (lengthOf (seconds, rate));
    addSine (samples, hertz, rate, amplitude, 0.0);
    return samples;
}

Samples whiteNoise (int length, std::uint32_t seed, double amplitude)
{
    // The generator's own words rather than a distribution, whose results are the library's choice.
    std::mt19937 generator (seed);
    auto samples = silence (length);

    for (auto& sample : samples)
        sample = static_cast<float> (amplitude * (static_cast<double> (generator()) / 2147483647.5 - 1.0));

    return samples;
}

Samples impulse (int length, int position)
{
    auto samples = silence (length);
    samples.at (static_cast<std::size_t> (position)) = 1.0f;
    return samples;
}

Samples material (int length)
{
    auto samples = whiteNoise (length, noiseSeed, 0.05);

    for (int n = 1; n <= 20; ++n)
        addSine (samples, 147.0 * n, 44100.0, 0.3 / n, 1.7 * n * n); // the phases spread, so that the peak stays low

    for (std::size_t i = 0; i < samples.size(); i += 5000)
        samples[i] += 1.0f;

    return samples;
}
} // namespace tarvelline::test
