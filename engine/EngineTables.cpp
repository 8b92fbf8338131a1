// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineTables.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace tarvelline
{
namespace
{
constexpr float onsetUpperHz = 400.0f; // times the frequency scale: from here on the threshold stays at its lower end
constexpr float onsetThresholdLow = 1.5f; // a bass bin must rise by half to count as an onset
constexpr float onsetThresholdSpan = 0.20000005f;
constexpr float onsetThresholdHigh = 1.3f;
constexpr float fullPeakTestHz = 1500.0f; // times the frequency scale: below, a peak needs two falling bins each side
constexpr float lowBandFullHz = 500.0f;   // below: only the wide window is heard
constexpr float lowBandEndHz = 800.0f;    // from here on: only the narrow one
constexpr int narrowWindowDivisor = 4;    // the narrow window covers this part of the frame
constexpr float envelopeStart = 0.2f;     // smoothing exponents of the lowest and, added, of the highest bin
constexpr float envelopeRise = 0.65f;
constexpr float envelopeMargin = 128.0f; // bins: what is further above has no share in the envelope, less than 0.73^128
constexpr float smallestShare = 1.0e-20f; // of an envelope's state: less is 0, and no product of it a denormal

AlignedVector<float> zeros (int count) { return AlignedVector<float> (static_cast<std::size_t> (count), 0.0f); }

/** Half a period of a sine over `length` entries, from 0 to 0. */
void fillHalfSine (float* first, int length)
{
    const auto step = std::numbers::pi / static_cast<double> (length - 1);
    auto angle = 0.0;

    for (auto* entry = first; entry != first + length; ++entry, angle += step)
        *entry = static_cast<float> (std::sin (angle));
}
} // namespace

EngineTables::EngineTables (int frameLength, float frequencyScale, float sampleRate)
{
    const auto binCount = frameLength / 2;
    const auto binsPerHz = static_cast<float> (frameLength) / sampleRate;

    buildWindows (frameLength);
    buildOnsetThresholds (binCount, binsPerHz, frequencyScale);
    buildLowBandWeights (binCount, binsPerHz);
    buildEnvelopeSegments (binCount);
}

void EngineTables::buildWindows (int frameLength)
{
    wideWindow = zeros (frameLength + 1 + readAhead);
    narrowWindow = zeros (frameLength + 1 + readAhead);

    const auto half = frameLength / narrowWindowDivisor / 2;
    fillHalfSine (wideWindow.data(), frameLength);
    narrowStart = frameLength / 2 - half;
    narrowEnd = frameLength / 2 + half;
    fillHalfSine (narrowWindow.data() + narrowStart, 2 * half);

    // A frame analysed with the wide window carries the same overlap-add gain whichever window resynthesises it.
    auto wideGain = 0.0, narrowGain = 0.0;

    for (std::size_t j = 0; j < wideWindow.size(); ++j)
    {
        wideGain += static_cast<double> (wideWindow[j] * wideWindow[j]);
        narrowGain += static_cast<double> (wideWindow[j] * narrowWindow[j]);
    }

    for (auto& entry : narrowWindow)
        entry *= static_cast<float> (wideGain / narrowGain);
}

void EngineTables::buildOnsetThresholds (int binCount, float binsPerHz, float frequencyScale)
{
    peakStartBin = static_cast<int> (binsPerHz * frequencyScale * fullPeakTestHz);

    const auto fallingBins = std::min (static_cast<int> (binsPerHz * (onsetUpperHz * frequencyScale)), binCount - 1);
    onsetThreshold.assign (static_cast<std::size_t> (binCount), onsetThresholdHigh);

    for (int k = 0; k < fallingBins; ++k)
        onsetThreshold[static_cast<std::size_t> (k)] =
            onsetThresholdLow - (static_cast<float> (k) / static_cast<float> (fallingBins)) * onsetThresholdSpan;
}

void EngineTables::buildLowBandWeights (int binCount, float binsPerHz)
{
    const auto fullBins = static_cast<int> (binsPerHz * lowBandFullHz);
    const auto endBin = static_cast<int> (binsPerHz * lowBandEndHz);
    const auto step = std::numbers::pi_v<float> / static_cast<float> (std::max (endBin - fullBins, 1));

    lowBandWeight = zeros (binCount);
    lowBandEnd = std::min (endBin, binCount);

    for (int k = 0; k < lowBandEnd; ++k)
        lowBandWeight[static_cast<std::size_t> (k)] =
            k < fullBins ? 1.0f : (std::cos (static_cast<float> (k - fullBins) * step) + 1.0f) * 0.5f;
}

void EngineTables::buildEnvelopeSegments (int binCount)
{
    std::vector<float> coefficients;
    auto exponent = envelopeStart;

    for (int k = 0; k < binCount; ++k, exponent += envelopeRise / static_cast<float> (binCount))
        coefficients.push_back (std::exp (-std::numbers::pi_v<float> / 2.0f * exponent));

    for (std::size_t quarters = 1; quarters <= envelopes.size(); ++quarters)
        envelopes[quarters - 1] =
            EnvelopeSegments (coefficients.data(), coefficients.size() * quarters / envelopes.size());
}

EnvelopeSegments::EnvelopeSegments (const float* binCoefficients, std::size_t binCount) : steps (binCount / count)
{
    for (auto* row : { &coefficients, &upwards, &downwards })
        row->resize (binCount);

    for (std::size_t segment = 0; segment < count; ++segment)
    {
        const auto* ofSegment = binCoefficients + segment * steps;
        auto share = 1.0f;
        const auto fill = [&] (auto& row, std::size_t i)
        {
            share *= ofSegment[i];
            row[i * count + segment] = share < smallestShare ? 0.0f : share;
        };

        for (std::size_t i = 0; i < steps; ++i)
        {
            coefficients[i * count + segment] = ofSegment[i];
            fill (upwards, i);
        }

        share = 1.0f;

        for (auto i = steps; i-- > 0;)
            fill (downwards, i);
    }
}

const EnvelopeSegments& EngineTables::envelopeReaching (int bins, float ratio) const noexcept
{
    const auto reach = static_cast<float> (bins) * std::max (ratio, 1.0f) + envelopeMargin;

    for (const auto& segments : envelopes)
        if (reach <= static_cast<float> (segments.coefficients.size()))
            return segments;

    return envelopes.back();
}
} // namespace tarvelline
