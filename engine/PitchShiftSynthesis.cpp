// SPDX-License-Identifier: GPL-3.0-or-later
// The synthesis frame: each bin's phasor turned on by its advance, transformed back and overlap-added at the pitch ratio.
#include "engine/PitchShiftEngine.h"
#include "engine/Spectrum.h"

namespace tarvelline
{
void PitchShiftEngine::synthesiseFrame() noexcept
{
    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        runPhasors (channel);
        transform.inverse (channel.lowFrame.data());
        transform.inverse (channel.highFrame.data());

        if (appliedRatio < 1.0f)
            overlapAddStretched (channel);
        else
            overlapAddCompressed (channel);
    }
}

void PitchShiftEngine::runPhasors (Channel& channel) const noexcept
{
    const auto& magnitude = appliedFormantRatio != 1.0f ? channel.shapedMagnitude : channel.magnitude;
    const SpectrumView advance (channel.advance.data(), binCount);
    const SpectrumView phasors (channel.synthPhasor.data(), binCount);
    const SpectrumView low (channel.lowFrame.data(), binCount);
    const SpectrumView high (channel.highFrame.data(), binCount);

    for (int k = 0; k < activeBins; ++k)
    {
        const auto bin = static_cast<std::size_t> (k);
        auto phasor = advance.get (k);

        if (lockCount[bin] != 0)
            phasor = phasors.get (k).times (phasor);

        if (lockCount[bin] == renormaliseSynthesisAt)
            phasor = phasor.normalised();

        phasors.set (k, phasor);

        const auto gain = outputGain * magnitude[bin];
        const auto weight = tables.lowBandWeight[bin];
        low.set (k, phasor.scaled (gain * weight));
        high.set (k, phasor.scaled (gain * (1.0f - weight)));
    }

    for (int k = activeBins; k < binCount; ++k)
    {
        low.set (k, { 0.0f, 0.0f });
        high.set (k, { 0.0f, 0.0f });
    }
}

/** Ratio 1 and above: the frame is read back faster than it was made, by the ratio asked for at each sample. */
void PitchShiftEngine::overlapAddCompressed (Channel& channel) const noexcept
{
    const auto length = static_cast<float> (frameSize);
    const auto windowStep = length / static_cast<float> (synthesisSpan);
    const auto base = outPos - frameSize;
    auto windowIndex = 0.0f; // summed in single precision; stays at or below N for every span

    for (int j = 0; j < synthesisSpan; ++j, windowIndex += windowStep)
    {
        const auto ratio = ratioHistory[static_cast<std::size_t> ((inPos - synthesisSpan + j) & inRingMask)];
        const auto position = static_cast<float> (j) * ratio;
        const auto window = static_cast<std::size_t> (windowIndex);
        auto& sample = channel.outRing[static_cast<std::size_t> ((base + j) & outRingMask)];

        if (j >= overlapLength) // no earlier frame reaches this far
            sample = 0.0f;

        if (position < length)
        {
            sample += interpolated (channel.lowFrame.data(), position) * tables.wideWindow[window];
            sample += interpolated (channel.highFrame.data(), position) * tables.narrowWindow[window];
        }
    }
}

/** Ratios below 1: the analysis has stretched the frame already; its span is the whole frame. */
void PitchShiftEngine::overlapAddStretched (Channel& channel) const noexcept
{
    const auto length = static_cast<float> (frameSize);
    const auto base = outPos - frameSize;

    for (int j = 0; j < frameSize; ++j)
    {
        // Indexed from the output cursor, not the input's as above: both move together, only other history is consulted.
        const auto ratio = ratioHistory[static_cast<std::size_t> ((base + j) & inRingMask)];
        const auto index = static_cast<std::size_t> (j);
        auto& sample = channel.outRing[static_cast<std::size_t> ((base + j) & outRingMask)];

        if (j >= overlapLength)
            sample = 0.0f;

        if (static_cast<float> (j) * ratio < length)
            sample += channel.lowFrame[index] * tables.wideWindow[index];

        sample += channel.highFrame[index] * tables.narrowWindow[index];
    }
}
} // namespace tarvelline
