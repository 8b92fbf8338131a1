// SPDX-License-Identifier: GPL-3.0-or-later
// The synthesis frame: each bin's phasor turned on by its advance, transformed back and overlap-added at the pitch ratio.
#include "engine/PitchShiftEngine.h"
#include "engine/SynthesisKernels.h"

#include <algorithm>

namespace tarvelline
{
void PitchShiftEngine::synthesiseFrame() noexcept
{
    for (std::size_t c = 0; c < static_cast<std::size_t> (channelCount); ++c)
    {
        turnPhasors (c);
        resources->transform.inverse (resources->low[c].data(), std::min (resources->tables.lowBandEnd, activeBins));
        resources->transform.inverse (resources->high[c].data(), activeBins);
        overlapAdd (c);
    }
}

void PitchShiftEngine::turnPhasors (std::size_t c) noexcept
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
                            .activeBins = static_cast<std::size_t> (activeBins),
                            .lowBins = static_cast<std::size_t> (std::min (resources->tables.lowBandEnd, activeBins)),
                            .gain = outputGain });
}

void PitchShiftEngine::overlapAdd (std::size_t c) noexcept
{
    const auto& tables = resources->tables;
    const auto wholeFrame = synthesisSpan == frameSize;
    const auto ringStart = (outPos - frameSize) & outRingMask;

    kernels::OverlapAdd job { .low = resources->low[c].data(),
                              .high = resources->high[c].data(),
                              .ratios = nullptr,
                              .wide = wholeFrame ? tables.wideWindow.data() : wideOverSpan.data(),
                              .narrow = wholeFrame ? tables.narrowWindow.data() : narrowOverSpan.data(),
                              .narrowStart = static_cast<std::size_t> (narrowStart),
                              .narrowEnd = static_cast<std::size_t> (narrowEnd),
                              .length = static_cast<std::size_t> (frameSize),
                              .span = static_cast<std::size_t> (synthesisSpan),
                              .overlap = static_cast<std::size_t> (overlapLength),
                              .ring = channelState[c].outRing.data(),
                              .ringStart = static_cast<std::size_t> (ringStart) };

    if (appliedRatio < 1.0f)
    {
        // The analysis has stretched the frame already. The history is indexed from the output cursor, not the input's
        // as below: both move together, only other history is consulted.
        job.ratios = ratioHistory.data() + (ringStart & inRingMask);
        kernels::overlapAddDirect (job);
        return;
    }

    // The frame is read back faster than it was made, by the ratio asked for at each sample.
    job.ratios = ratioHistory.data() + inPos + frameSize - synthesisSpan;

    if (unityRun >= synthesisSpan)
        kernels::overlapAddDirect (job);
    else
        kernels::overlapAddInterpolated (job);
}

/** Lays the windows over the synthesis span. Their running index is summed in single precision; it stays at or below N. */
void PitchShiftEngine::resampleWindows() noexcept
{
    if (synthesisSpan == windowedSpan)
        return;

    const auto& tables = resources->tables;
    windowedSpan = synthesisSpan;
    narrowStart = tables.narrowStart;
    narrowEnd = tables.narrowEnd;

    if (synthesisSpan == frameSize)
        return;

    const auto step = static_cast<float> (frameSize) / static_cast<float> (synthesisSpan);
    const auto inner = static_cast<std::size_t> (tables.narrowStart),
               outer = static_cast<std::size_t> (tables.narrowEnd);
    auto index = 0.0f;
    narrowStart = narrowEnd = 0;

    for (int j = 0; j < synthesisSpan; ++j, index += step)
    {
        const auto entry = static_cast<std::size_t> (index), at = static_cast<std::size_t> (j);
        wideOverSpan[at] = tables.wideWindow[entry];
        narrowOverSpan[at] = tables.narrowWindow[entry];
        narrowStart += entry < inner ? 1 : 0;
        narrowEnd += entry < outer ? 1 : 0;
    }
}
} // namespace tarvelline
