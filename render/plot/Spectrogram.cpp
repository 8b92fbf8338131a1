// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/Spectrogram.h"

#include "render/plot/LowSpectrum.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

namespace tarvelline::render
{
namespace
{
constexpr double windowSeconds = 0.09; // 11 Hz a bin: parts the partials of a low guitar string
constexpr int padding = 4;             // zeros interpolate between the bins
constexpr float lowestPower = 1.0e-14f, highestPower = 1.0e14f;

int powerOfTwoNear (double length)
{
    constexpr int shortest = HartleyTables::shortest / padding, longest = 32768; // at 384 kHz
    return std::clamp (1 << static_cast<int> (std::log2 (std::clamp (length, 1.0, 1.0e6)) + 0.5), shortest, longest);
}

std::vector<float> hannWindow (int length)
{
    std::vector<float> window (static_cast<std::size_t> (length));

    for (std::size_t i = 0; i < window.size(); ++i)
        window[i] =
            static_cast<float> (0.5 - 0.5 * std::cos (2.0 * std::numbers::pi * static_cast<double> (i) / length));

    return window;
}

/** Power spectra around rising moments, the mean of all channels; 1 at a bin is a sine of full scale there. */
class Analyser
{
public:
    Analyser (const Source& recording, double highestHz)
        : source (recording), window (hannWindow (powerOfTwoNear (windowSeconds * source.rate))),
          input (source.channels, static_cast<int> (window.size())), windowed (window.size()),
          spectrum (static_cast<int> (window.size()) * padding, static_cast<int> (highestHz * binsPerHz()) + 2),
          power (spectrum.getBins())
    {
        input.clear();
    }

    const std::vector<float>& around (std::int64_t sample)
    {
        // A full-scale sine has a quarter of the Hann window's length.
        const auto magnitude = static_cast<float> (window.size()) / 4.0f;
        moveTo (sample - input.getNumSamples() / 2);
        std::fill (power.begin(), power.end(), 0.0f);

        for (int channel = 0; channel < source.channels; ++channel)
        {
            std::transform (window.begin(), window.end(), input.getReadPointer (channel), windowed.begin(),
                            std::multiplies<float>());
            spectrum.addPower (windowed, 1.0f / (magnitude * magnitude * static_cast<float> (source.channels)), power);
        }

        return power;
    }

    double binsPerHz() const { return static_cast<double> (window.size()) * padding / source.rate; }

private:
    // Keeps what is there already, so that a file is read once, from its start to its end.
    void moveTo (std::int64_t newStart)
    {
        const auto length = input.getNumSamples();
        const auto kept = static_cast<int> (std::clamp<std::int64_t> (start + length - newStart, 0, length));
        start = newStart;

        for (int channel = 0; channel < source.channels; ++channel)
        {
            auto* samples = input.getWritePointer (channel);
            std::copy (samples + length - kept, samples + length, samples);
            std::fill (samples + kept, samples + length, 0.0f);
        }

        const auto from = std::max<std::int64_t> (start + kept, 0), end = std::min (start + length, source.length);

        if (from < end)
            source.read (input, static_cast<int> (from - start), static_cast<int> (end - from), from);
    }

    const Source& source;
    const std::vector<float> window;
    juce::AudioBuffer<float> input;                                // the samples from `start` on
    std::int64_t start = std::numeric_limits<std::int32_t>::min(); // before everything
    std::vector<float> windowed;
    LowSpectrum spectrum;
    std::vector<float> power;
};

// The strongest bin that a row covers, so that no partial is lost between rows; between two bins where rows are denser.
float powerBetween (const std::vector<float>& power, double lowBin, double highBin)
{
    const auto last = static_cast<double> (power.size() - 1);
    const auto first = static_cast<std::size_t> (std::min (std::ceil (lowBin), last));
    const auto end = static_cast<std::size_t> (std::min (std::ceil (highBin), last));

    if (end > first)
        return *std::max_element (power.begin() + static_cast<std::ptrdiff_t> (first),
                                  power.begin() + static_cast<std::ptrdiff_t> (end));

    const auto below = static_cast<std::size_t> (std::min (lowBin, last - 1.0));
    const auto part = std::min (lowBin - static_cast<double> (below), 1.0);
    return std::lerp (power[below], power[below + 1], static_cast<float> (part));
}
} // namespace

Spectrogram::Spectrogram (const Source& source, const SpectrogramGrid& wanted) : grid (wanted)
{
    Analyser analyser (source, grid.highHz);
    const auto rowRatio = std::pow (grid.highHz / grid.lowHz, 1.0 / grid.rows);
    levels.reserve (static_cast<std::size_t> (grid.columns) * static_cast<std::size_t> (grid.rows));

    for (int column = 0; column < grid.columns; ++column)
    {
        const auto seconds = (column + 0.5) * grid.seconds / grid.columns;
        const auto& power = analyser.around (std::llround (seconds * source.rate));
        auto bin = grid.lowHz * analyser.binsPerHz();

        for (int row = 0; row < grid.rows; ++row, bin *= rowRatio)
        {
            // Samples that are no numbers, or beyond all measure, end here: fmax takes the number of the two.
            const auto found = std::fmax (lowestPower, powerBetween (power, bin, bin * rowRatio));
            levels.push_back (10.0f * std::log10 (std::fmin (found, highestPower)));
        }
    }
}

float Spectrogram::loudest() const { return *std::max_element (levels.begin(), levels.end()); }
} // namespace tarvelline::render
