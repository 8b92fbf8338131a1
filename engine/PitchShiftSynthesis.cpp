// SPDX-License-Identifier: GPL-3.0-or-later
// The synthesis frame: each bin's phasor turned on by its advance, transformed back and overlap-added at the pitch ratio.
#include "engine/PitchShiftEngine.h"
#include "engine/SynthesisKernels.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr float resynthesisGain = 0.26f; // eight overlapping squared sine windows sum to 4: 1.04 in all
} // namespace

void PitchShiftEngine::synthesiseFrame() noexcept
{
    if (appliedFormantRatio != 1.0f && geometry.activeBins > shapedBins)
        warpEnvelope();

    const auto lowBins = std::min (resources->tables.lowBandEnd, geometry.activeBins);

    for (std::size_t c = 0; c < static_cast<std::size_t> (channelCount); ++c)
    {
        turnPhasors (c, lowBins);
        resources->transform.inverse (resources->low[c].data(), lowBins);
        resources->transform.inverse (resources->high[c].data(), geometry.activeBins);
    }

    overlapAdd();
}

void PitchShiftEngine::turnPhasors (std::size_t c, int lowBins) noexcept
{
    auto& channel = channelState[c];
    const auto& magnitude = appliedFormantRatio != 1.0f ? channel.shapedMagnitude : channel.magnitude;

    kernels::turnPhasors ({ .magnitude = magnitude.data(),
                            .advance = channel.advance.data(),
                            .lockCount = lockCount.data(),
                            .lowBandWeight = resources->tables.lowBandWeight.data(),
                            .phasor = channel.synthPhasor.data(),
                            .low = resources->low[c].data(),
                            .high = resources->high[c].data(),
                            .binCount = static_cast<std::size_t> (binCount),
                            .activeBins = static_cast<std::size_t> (geometry.activeBins),
                            .lowBins = static_cast<std::size_t> (lowBins),
                            .gain = resynthesisGain / static_cast<float> (frameSize) });
}

void PitchShiftEngine::overlapAdd() noexcept
{
    const auto frames = [this] (std::size_t c) -> kernels::OverlapAdd::Channel {
        return { resources->low[c].data(), resources->high[c].data(), channelState[c].outRing.data() };
    };

    // Downwards the analysis has stretched the frame already. The history is then indexed from the output cursor, not back
    // from the input's: only other history is consulted.
    const auto stretched = appliedRatio < 1.0f;
    const auto* ratios = ratioHistory.data() + position + (stretched ? 0 : frameSize - geometry.synthesisSpan);

    const kernels::OverlapAdd job { .channels = { frames (0), frames (1) },
                                    .channelCount = static_cast<std::size_t> (channelCount),
                                    .ratios = ratios,
                                    .wide = windows.wide(),
                                    .narrow = windows.narrow(),
                                    .narrowStart = static_cast<std::size_t> (windows.narrowStart),
                                    .narrowEnd = static_cast<std::size_t> (windows.narrowEnd),
                                    .length = static_cast<std::size_t> (frameSize),
                                    .span = static_cast<std::size_t> (geometry.synthesisSpan),
                                    .overlap = static_cast<std::size_t> (geometry.overlapLength),
                                    .ringStart = static_cast<std::size_t> (position) };

    // Upwards it is read back faster than it was made, by the ratio asked for at each sample.
    if (stretched || unityRun >= geometry.synthesisSpan)
        kernels::overlapAddStraight (job);
    else
        kernels::overlapAddCompressed (job);
}
} // namespace tarvelline
