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

/** Uniform white noise in -amplitude .. amplitude, the same on every machine. */
Samples whiteNoise (int length, std::uint32_t seed = noiseSeed, double amplitude = 0.5);

/** Zeros, and one sample of 1 at `position`. */
Samples impulse (int length, int position = 0);

/** Something of everything: the partials of a tone of 147 Hz at 44.1 kHz, a little noise, and a click every 5000 samples. */
Samples material (int length);
} // namespace tarvelline::test
