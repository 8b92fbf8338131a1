// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <vector>

namespace tarvelline::test
{
/** Test signals, one channel each. Rates and frequencies in Hz, amplitudes as peak values, lengths in samples. */
using Samples = std::vector<float>;

/** The seed of every test that needs noise and no particular one. */
inline constexpr std::uint32_t noiseSeed = 20240611;

/** The number of samples in a time, rounded down. */
int lengthOf (double seconds, double rate);

Samples silence (int length);
Samples sine (double hertz, double rate, double seconds, double amplitude);

/** Partials 1 to `partials` of a tone, as far as they stay below 0.45 of the rate; partial n has amplitude / n. Their
    phases are spread, so that the peak stays well below the sum of the amplitudes. */
Samples harmonicTone (double hertz, double rate, double seconds, int partials, double amplitude);

/** Uniform white noise in -amplitude .. amplitude, the same on every machine. */
Samples whiteNoise (int length, std::uint32_t seed = noiseSeed, double amplitude = 0.5);

/** Zeros, and one sample of 1 at `position`. */
Samples impulse (int length, int position = 0);

/** Ones at 0, period, 2 periods and so on; zeros elsewhere. */
Samples clickTrain (int length, int period);

/** The sum of two signals, as long as the first; the second counts as silent after its end. */
Samples mix (Samples first, const Samples& second);
} // namespace tarvelline::test
