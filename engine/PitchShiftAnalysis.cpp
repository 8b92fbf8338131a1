// SPDX-License-Identifier: GPL-3.0-or-later
// The analysis frame: what the input holds now, bin by bin, and how far each bin's phase has moved since the last frame.
#include "engine/PitchShiftEngine.h"

namespace tarvelline
{
void PitchShiftEngine::analyseFrame() noexcept
{
    readWindowedInput();

    for (int c = 0; c < channelCount; ++c)
        resources->transform.forward (resources->low[static_cast<std::size_t> (c)].data());

    const auto bins = analysisBins();
    kernels::measureBins (bins); // one lock count for all channels: they reset together and the stereo image holds
    spreadResetsOverPeaks();
    kernels::advancePhases (bins);

    if (formantRatio != 1.0f)
        warpEnvelope();

    appliedFormantRatio = formantRatio;
}

void PitchShiftEngine::readWindowedInput() noexcept
{
    const auto oldest = static_cast<std::size_t> (inPos), length = static_cast<std::size_t> (frameSize);

    for (int c = 0; c < channelCount; ++c)
    {
        const auto* input = channelState[static_cast<std::size_t> (c)].inRing.data() + oldest;
        auto* frame = resources->low[static_cast<std::size_t> (c)].data();

        if (appliedRatio < 1.0f)
            kernels::readStretched (input, ratioHistory.data() + oldest, resources->tables.wideWindow.data(), frame,
                                    length);
        else
            kernels::readStraight (input, resources->tables.wideWindow.data(), frame, length);
    }
}

kernels::AnalysisBins PitchShiftEngine::analysisBins() noexcept
{
    const auto buffers = [this] (std::size_t c) -> kernels::AnalysisBins::Channel
    {
        auto& channel = channelState[c];
        return { resources->low[c].data(), channel.magnitude.data(), channel.advance.data(),
                 channel.lastPhasor.data() };
    };

    return { .channels = { buffers (0), buffers (1) },
             .channelCount = static_cast<std::size_t> (channelCount),
             .binCount = static_cast<std::size_t> (binCount),
             .activeBins = static_cast<std::size_t> (activeBins),
             .onsetThreshold = resources->tables.onsetThreshold.data(),
             .sum = magnitudeSum.data(),
             .lockCount = lockCount.data() };
}

void PitchShiftEngine::spreadResetsOverPeaks() noexcept
{
    const auto* sum = magnitudeSum.data();
    const auto* locks = lockCount.data();
    const auto lowestBin = resources->tables.peakStartBin;

    for (int k = 2; static_cast<float> (k) < lowestBin;)
    {
        const auto onsetOnPeak = locks[k] == 0.0f && sum[k - 1] < sum[k] && sum[k - 1] > sum[k - 2]
                                 && sum[k + 1] < sum[k] && sum[k + 1] > sum[k + 2];
        k = onsetOnPeak ? resetUpwards (k) : k + 1;
    }

    const auto nextPeak = [=, end = activeBins - 2] (int bin)
    {
        return bin < end ? static_cast<int> (
                   kernels::nextResetPeak (locks, sum, static_cast<std::size_t> (bin), static_cast<std::size_t> (end)))
                         : end;
    };

    for (auto k = nextPeak (static_cast<int> (lowestBin)); k < activeBins - 2; k = nextPeak (resetUpwards (k)))
        resetDownwards (k, lowestBin);
}

/** Resets the bins above a peak as far as they fall. Returns the bin where that ends: it is the next one to be examined. */
int PitchShiftEngine::resetUpwards (int bin) noexcept
{
    auto j = static_cast<std::size_t> (bin) + 1;

    for (; static_cast<int> (j) < activeBins - 1 && magnitudeSum[j - 1] > magnitudeSum[j]; ++j)
        lockCount[j] = 0.0f;

    return static_cast<int> (j);
}

void PitchShiftEngine::resetDownwards (int bin, float lowestBin) noexcept
{
    for (int j = bin - 1; static_cast<float> (j) >= lowestBin; --j)
    {
        const auto k = static_cast<std::size_t> (j);

        if (magnitudeSum[k + 1] <= magnitudeSum[k])
            return;

        lockCount[k] = 0.0f;
    }
}

void PitchShiftEngine::warpEnvelope() noexcept
{
    auto &left = channelState[0], &right = channelState[1];

    kernels::warpEnvelope ({ .magnitudes = { left.magnitude.data(), right.magnitude.data() },
                             .shaped = { left.shapedMagnitude.data(), right.shapedMagnitude.data() },
                             .channelCount = static_cast<std::size_t> (channelCount),
                             .binCount = static_cast<std::size_t> (binCount),
                             .coefficients = resources->tables.envelopeCoeff.data(),
                             .ratio = formantRatio,
                             .envelopes = resources->envelopes.data() });
}
} // namespace tarvelline
