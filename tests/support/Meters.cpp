// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Meters.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <numbers>
#include <numeric>

namespace tarvelline::test
{
namespace
{
/** The product of two finite complex numbers, without the library's care for infinities, which costs most of the time. */
std::complex<double> rotated (std::complex<double> a, std::complex<double> b)
{
    return { a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real() };
}

/** The Hann-windowed spectrum at any frequency, scaled so that a sine of amplitude 1 has magnitude 1. */
std::complex<double> spectrumAt (Signal signal, double hertz, double rate)
{
    const auto windowTurn = std::polar (1.0, 2.0 * std::numbers::pi / static_cast<double> (signal.size()));
    const auto turn = std::polar (1.0, -2.0 * std::numbers::pi * hertz / rate);
    std::complex<double> windowPhasor = 1.0, phasor = 1.0, sum = 0.0;

    for (const auto sample : signal)
    {
        sum += phasor * ((1.0 - windowPhasor.real()) * static_cast<double> (sample));
        windowPhasor = rotated (windowPhasor, windowTurn);
        phasor = rotated (phasor, turn);
    }

    return sum * 2.0 / static_cast<double> (signal.size());
}

double decibels (double powerRatio) { return 10.0 * std::log10 (powerRatio); }

double power (Signal signal)
{
    double sum = 0.0;

    for (const auto sample : signal)
        sum += static_cast<double> (sample) * static_cast<double> (sample);

    return sum;
}

double differencePower (Signal actual, Signal expected)
{
    if (actual.size() != expected.size())
        return std::numeric_limits<double>::quiet_NaN(); // no comparison with it holds, so the test fails

    double sum = 0.0;

    for (std::size_t i = 0; i < actual.size(); ++i)
    {
        const auto difference = static_cast<double> (actual[i]) - static_cast<double> (expected[i]);
        sum += difference * difference;
    }

    return sum;
}

/** One step towards the top of the spectrum: the vertex of the parabola through three points of its logarithm. Stays above
    zero, where a low tone merges with its mirror image while the piece is short. */
double climb (Signal signal, double hertz, double step, double rate)
{
    const auto below = std::log (std::abs (spectrumAt (signal, hertz - step, rate)));
    const auto here = std::log (std::abs (spectrumAt (signal, hertz, rate)));
    const auto above = std::log (std::abs (spectrumAt (signal, hertz + step, rate)));
    const auto curvature = below - 2.0 * here + above;
    const auto outside = above > below ? 1.0 : -1.0;
    const auto steps = curvature < 0.0 ? std::clamp (0.5 * (below - above) / curvature, -2.0, 2.0) : outside;
    return std::max (hertz + steps * step, 0.1 * step);
}
} // namespace

double frequencyHz (Signal signal, double rate)
{
    constexpr std::size_t coarseLength = 1024; // samples: short enough to try every bin
    double hertz = 0.0, largest = -1.0;

    const auto coarse = signal.subspan ((signal.size() - coarseLength) / 2, coarseLength);

    for (std::size_t bin = 1; bin < coarseLength / 2; ++bin)
    {
        const auto candidate = static_cast<double> (bin) * rate / static_cast<double> (coarseLength);
        const auto magnitude = std::abs (spectrumAt (coarse, candidate, rate));

        if (magnitude > largest)
        {
            largest = magnitude;
            hertz = candidate;
        }
    }

    // Smaller and smaller steps in longer and longer pieces around the middle: each finds the peak well inside the next one's
    // main lobe. A parabola fits the better the closer its points: the last step is a hundredth of a bin.
    for (auto step = 0.5 * rate / coarseLength; step > 0.005 * rate / static_cast<double> (signal.size()); step *= 0.5)
    {
        const auto length = std::min (signal.size(), static_cast<std::size_t> (0.5 * rate / step));
        hertz = climb (signal.subspan ((signal.size() - length) / 2, length), hertz, step, rate);
    }

    return hertz;
}

double centsBetween (double referenceHz, double hertz) { return 1200.0 * std::log2 (hertz / referenceHz); }

double levelDb (Signal signal) { return decibels (power (signal) / static_cast<double> (signal.size())); }

double componentDb (Signal signal, double hertz, double rate)
{
    return decibels (std::norm (spectrumAt (signal, hertz, rate)));
}

float peak (Signal signal)
{
    return std::accumulate (signal.begin(), signal.end(), 0.0f,
                            [] (float a, float b) { return std::max (a, std::abs (b)); });
}

double signalToDifferenceDb (Signal actual, Signal expected)
{
    return decibels (power (expected) / differencePower (actual, expected));
}

bool allFinite (Signal signal)
{
    return std::all_of (signal.begin(), signal.end(), [] (float sample) { return std::isfinite (sample); });
}

bool noneSubnormal (Signal signal)
{
    return std::none_of (signal.begin(), signal.end(),
                         [] (float sample) { return std::fpclassify (sample) == FP_SUBNORMAL; });
}

bool sameBits (Signal first, Signal second)
{
    return std::equal (first.begin(), first.end(), second.begin(), second.end(),
                       [] (float a, float b)
                       { return std::bit_cast<std::uint32_t> (a) == std::bit_cast<std::uint32_t> (b); });
}
} // namespace tarvelline::test
