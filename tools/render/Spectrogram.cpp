// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Spectrogram.h"

#include "engine/transform/HartleyTransform.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace tarvelline::render
{
namespace
{
constexpr double windowSeconds = 0.09;  // 11 Hz a bin: parts the partials of a low guitar string
constexpr int padding = 4;              // zeros interpolate between the bins
constexpr double silentPower = 1.0e-14; // -140 dB

int powerOfTwoNear (double length)
{
    return std::clamp (1 << static_cast<int> (std::lround (std::log2 (length))), 64, 65536 / padding);
}

std::vector<float> hannWindow (int length)
{
    std::vector<float> window (static_cast<std::size_t> (length));

    for (std::size_t i = 0; i < window.size(); ++i)
        window[i] =
            static_cast<float> (0.5 - 0.5 * std::cos (2.0 * std::numbers::pi * static_cast<double> (i) / length));

    return window;
}

/** Power spectrum around one moment, the mean of all channels; 1 at a bin is a sine of full scale there. */
class Analyser
{
public:
    Analyser (juce::AudioFormatReader& source)
        : reader (source), window (hannWindow (powerOfTwoNear (windowSeconds * source.sampleRate))),
          input (static_cast<int> (source.numChannels), static_cast<int> (window.size())),
          spectrum (window.size() * padding), power (spectrum.size() / 2),
          transform (static_cast<int> (spectrum.size()))
    {
    }

    const std::vector<double>& around (std::int64_t sample)
    {
        const auto length = static_cast<int> (window.size());
        reader.read (&input, 0, length, sample - length / 2, true, true);
        std::fill (power.begin(), power.end(), 0.0);

        for (int channel = 0; channel < input.getNumChannels(); ++channel)
            addChannel (input.getReadPointer (channel));

        return power;
    }

    double binsPerHz() const { return static_cast<double> (spectrum.size()) / reader.sampleRate; }

private:
    void addChannel (const float* samples)
    {
        std::fill (spectrum.begin(), spectrum.end(), 0.0f);
        std::transform (window.begin(), window.end(), samples, spectrum.begin(), std::multiplies<float>());
        transform.forward (spectrum.data());

        // The pair of a bin has twice the squared magnitude; a full-scale sine has a quarter of the Hann window's length.
        const auto magnitude = static_cast<double> (window.size()) / 4.0;
        const auto scale = 1.0 / (2.0 * magnitude * magnitude * input.getNumChannels());

        for (std::size_t k = 0; k < power.size(); ++k)
        {
            const double a = spectrum[k], b = spectrum[power.size() + k];
            power[k] += scale * (a * a + b * b);
        }
    }

    juce::AudioFormatReader& reader;
    const std::vector<float> window;
    juce::AudioBuffer<float> input;
    std::vector<float> spectrum;
    std::vector<double> power;
    HartleyTransform transform;
};

// The strongest bin that a row covers, so that no partial is lost between rows; between two bins where rows are denser.
double powerBetween (const std::vector<double>& power, double lowBin, double highBin)
{
    const auto last = static_cast<double> (power.size() - 1);
    const auto first = static_cast<std::size_t> (std::min (std::ceil (lowBin), last));
    const auto end = static_cast<std::size_t> (std::min (std::ceil (highBin), last));

    if (end > first)
        return *std::max_element (power.begin() + static_cast<std::ptrdiff_t> (first),
                                  power.begin() + static_cast<std::ptrdiff_t> (end));

    const auto below = static_cast<std::size_t> (std::min (lowBin, last - 1.0));
    const auto part = std::min (lowBin - static_cast<double> (below), 1.0);
    return power[below] + part * (power[below + 1] - power[below]);
}
} // namespace

Spectrogram::Spectrogram (juce::AudioFormatReader& reader, const SpectrogramGrid& wanted) : grid (wanted)
{
    Analyser analyser (reader);
    const auto rowRatio = std::pow (grid.highHz / grid.lowHz, 1.0 / grid.rows);
    levels.reserve (static_cast<std::size_t> (grid.columns) * static_cast<std::size_t> (grid.rows));

    for (int column = 0; column < grid.columns; ++column)
    {
        const auto seconds = (column + 0.5) * grid.seconds / grid.columns;
        const auto& power = analyser.around (std::llround (seconds * reader.sampleRate));
        auto bin = grid.lowHz * analyser.binsPerHz();

        for (int row = 0; row < grid.rows; ++row, bin *= rowRatio)
            levels.push_back (static_cast<float> (
                10.0 * std::log10 (std::max (powerBetween (power, bin, bin * rowRatio), silentPower))));
    }
}

float Spectrogram::loudest() const { return *std::max_element (levels.begin(), levels.end()); }
} // namespace tarvelline::render
