// SPDX-License-Identifier: GPL-3.0-or-later
// The synthesis frame: each bin's phasor turned on by its advance, transformed back and overlap-added at the pitch ratio.
#include "engine/PitchShiftEngine.h"

#include <algorithm>
#include <utility>

namespace tarvelline
{
namespace
{
constexpr float resynthesisGain = 0.26f; // eight overlapping squared sine windows sum to 4: 1.04 in all
} // namespace

/** What must be done at once: the low band is heard from the frame's first sample on. */
void PitchShiftEngine::synthesiseLowBand() noexcept
{
    if (appliedFormantRatio != 1.0f && geometry.activeBins > shapedBins)
        warpEnvelope();

    windows.layOver (geometry.synthesisSpan, resources->low[0].data());

    for (std::size_t c = 0; c < static_cast<std::size_t> (channelCount); ++c)
    {
        const auto bins = synthesisBins (c);
        kernels::turnLowBand (bins);
        resources->transform.inverse (bins.low, static_cast<int> (bins.lowBins));
    }

    auto job = overlapAdd (resources->low);
    job.window = windows.wide();
    job.end = static_cast<std::size_t> (geometry.synthesisSpan);

    if (appliedRatio < 1.0f)
        kernels::overlapAddStretched (job);
    else
        isCompressed() ? kernels::overlapAddCompressed (job) : kernels::overlapAddWhole (job);
}

void PitchShiftEngine::postponeHighBand() noexcept
{
    postponedHighBand = { { true, waitOf (geometry.synthesisHop) },
                          { synthesisBins (0), synthesisBins (1) },
                          overlapAdd (resources->high),
                          isCompressed() };

    auto& job = postponedHighBand.overlapAdd;
    job.window = windows.narrow();
    job.from = static_cast<std::size_t> (windows.narrowStart);
    job.end = static_cast<std::size_t> (windows.narrowEnd);
}

void PitchShiftEngine::finishHighBand() noexcept
{
    if (! std::exchange (postponedHighBand.waits, false))
        return;

    const auto& job = postponedHighBand.overlapAdd;

    for (std::size_t c = 0; c < job.channelCount; ++c)
    {
        const auto& bins = postponedHighBand.bins[c];
        kernels::turnHighBand (bins);
        resources->transform.inverse (bins.high, static_cast<int> (bins.activeBins));
    }

    postponedHighBand.isCompressed ? kernels::overlapAddCompressed (job) : kernels::overlapAddWhole (job);
}

/** Upwards a frame is read back faster than it was made, by the ratio asked for at each sample. */
bool PitchShiftEngine::isCompressed() const noexcept
{
    return appliedRatio >= 1.0f && unityRun < geometry.synthesisSpan;
}

kernels::SynthesisBins PitchShiftEngine::synthesisBins (std::size_t c) noexcept
{
    auto& channel = channelState[c];
    const auto& magnitude = appliedFormantRatio != 1.0f ? channel.shapedMagnitude : channel.magnitude;

    return { .magnitude = magnitude.data(),
             .advance = channel.advance.data(),
             .lockCount = lockCount.data(),
             .lowBandWeight = resources->tables.lowBandWeight.data(),
             .phasor = channel.synthPhasor.data(),
             .low = resources->low[c].data(),
             .high = resources->high[c].data(),
             .binCount = static_cast<std::size_t> (binCount),
             .activeBins = static_cast<std::size_t> (geometry.activeBins),
             .lowBins = static_cast<std::size_t> (std::min (resources->tables.lowBandEnd, geometry.activeBins)),
             .gain = resynthesisGain / static_cast<float> (frameSize) };
}

/** The job but for its window and for where it ends. */
kernels::OverlapAdd PitchShiftEngine::overlapAdd (const std::array<AlignedVector<float>, 2>& frames) noexcept
{
    // Downwards the analysis has stretched the frame already. The history is then indexed from the output cursor, not back
    // from the input's: only other history is consulted.
    const auto back = appliedRatio < 1.0f ? frameSize : geometry.synthesisSpan;

    return { .channels = { { { frames[0].data(), channelState[0].outRing.data() },
                             { frames[1].data(), channelState[1].outRing.data() } } },
             .channelCount = static_cast<std::size_t> (channelCount),
             .ratios = ratioHistory.data() + position + (ringLength - back),
             .window = nullptr,
             .from = 0,
             .end = 0,
             .length = static_cast<std::size_t> (frameSize),
             .overlap = static_cast<std::size_t> (geometry.overlapLength),
             .ringStart = static_cast<std::size_t> (outPosition) };
}
} // namespace tarvelline
