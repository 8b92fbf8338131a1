// SPDX-License-Identifier: GPL-3.0-or-later
// The analysis frame: what the input holds now, bin by bin, and how far each bin's phase has moved since the last frame.
#include "engine/PitchShiftEngine.h"
#include "engine/Spectrum.h"

#include <algorithm>
#include <utility>

namespace tarvelline
{
void PitchShiftEngine::analyseFrame() noexcept
{
    transformWindowedInput();

    const auto bins = analysisBins();
    auto& masks = resources->masks; // of all channels: they reset together and the stereo image holds
    kernels::measureBins (bins, masks);
    spreadResetsOverPeaks (masks, bins.activeBins, static_cast<std::size_t> (resources->tables.peakStartBin));
    kernels::advancePhases (bins, masks.resets);

    analysedBins = geometry.activeBins;
    appliedFormantRatio = postponedAnalysis.formantRatio;

    if (appliedFormantRatio != 1.0f)
        warpEnvelope();
}

void PitchShiftEngine::transformWindowedInput() noexcept
{
    const auto stretched = appliedRatio < 1.0f;

    if (stretched)
        readStretchedInput();

    for (std::size_t c = 0; c < static_cast<std::size_t> (channelCount); ++c)
    {
        const auto* samples = channelState[c].inRing.data() + postponedAnalysis.start;
        auto* frame = resources->low[c].data();

        if (stretched)
            resources->transform.forward (frame);
        else
            resources->transform.forward ({ samples, resources->tables.wideWindow.data(), denormalGuard }, frame);
    }
}

void PitchShiftEngine::readStretchedInput() noexcept
{
    const auto start = static_cast<std::size_t> (postponedAnalysis.start),
               end = start + static_cast<std::size_t> (frameSize);
    auto &left = channelState[0].inRing, &right = channelState[1].inRing;
    auto& frames = resources->low;

    // The sample after the last one is the first again. What stands there belongs to another frame.
    const auto leftNext = std::exchange (left[end], left[start]), rightNext = std::exchange (right[end], right[start]);
    kernels::readStretched ({ .inputs = { left.data() + start, right.data() + start },
                              .frames = { frames[0].data(), frames[1].data() },
                              .channelCount = static_cast<std::size_t> (channelCount),
                              .window = resources->tables.wideWindow.data(),
                              .ratios = ratioHistory.data() + start,
                              .length = static_cast<std::size_t> (frameSize) });
    left[end] = leftNext;
    right[end] = rightNext;
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
             .activeBins = static_cast<std::size_t> (geometry.activeBins),
             .lastActiveBins = static_cast<std::size_t> (analysedBins),
             .onsetThreshold = resources->tables.onsetThreshold.data(),
             .sum = magnitudeSum.data(),
             .lockCount = lockCount.data() };
}

/** Of the active bins, and some more in whole vectors, should the geometry take in more before the next frame. */
void PitchShiftEngine::warpEnvelope() noexcept
{
    constexpr int widestVector = 16;
    shapedBins = std::min ((geometry.activeBins / 8 * 9 / widestVector + 1) * widestVector, binCount);
    auto &left = channelState[0], &right = channelState[1];

    auto &rows = resources->envelopeRows, &envelopes = resources->envelopes;

    kernels::warpEnvelope ({ .segments = &resources->tables.envelopeReaching (shapedBins, appliedFormantRatio),
                             .magnitudes = { left.magnitude.data(), right.magnitude.data() },
                             .shaped = { left.shapedMagnitude.data(), right.shapedMagnitude.data() },
                             .channelCount = static_cast<std::size_t> (channelCount),
                             .binCount = static_cast<std::size_t> (binCount),
                             .bins = static_cast<std::size_t> (shapedBins),
                             .ratio = appliedFormantRatio,
                             .rows = { rows[0].data(), rows[1].data() },
                             .envelopes = { envelopes[0].data(), envelopes[1].data() } });
}
} // namespace tarvelline
