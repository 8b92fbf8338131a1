// SPDX-License-Identifier: GPL-3.0-or-later
// The analysis frame: what the input holds now, bin by bin, and how far each bin's phase has moved since the last frame.
#include "engine/PitchShiftEngine.h"
#include "engine/Spectrum.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr float onsetFloor = 1.0e-8f;      // a bin this quiet in the last frame cannot rise: it starts afresh
constexpr float envelopeFloor = 0.01f;     // the envelope divides the magnitudes: held well off zero
constexpr float envelopeBeyondTop = 0.01f; // what the envelope is taken for above its last bin
constexpr float envelopeSentinel = 0.001f; // the entry after the last bin, to interpolate into
constexpr int envelopePasses = 2;

/** One step of a one-pole smoother along the bins. */
float smoothed (float state, float value, float coefficient) noexcept
{
    return (state - value) * coefficient + denormalGuard + value;
}

/** Smooths magnitudes into their envelope, backwards and forwards so that it does not lean, twice. */
void smoothIntoEnvelope (float* envelope, const float* coefficients, int count) noexcept
{
    for (int pass = 0; pass < envelopePasses; ++pass)
    {
        auto state = 0.0f;

        for (int k = count - 1; k >= 0; --k)
            envelope[k] = state = smoothed (state, envelope[k], coefficients[k]);

        state = 0.0f;

        for (int k = 0; k < count; ++k)
        {
            state = smoothed (state, envelope[k], coefficients[k]);
            envelope[k] = std::max (state, envelopeFloor); // the state itself runs on below the floor
        }
    }
}
} // namespace

void PitchShiftEngine::analyseFrame() noexcept
{
    readWindowedInput();

    for (int c = 0; c < channelCount; ++c)
        transform.forward (channelState[static_cast<std::size_t> (c)].lowFrame.data());

    measureMagnitudes();
    detectOnsets();
    spreadResetsOverPeaks();
    advancePhases();

    if (formantRatio != 1.0f)
        warpEnvelope();

    appliedFormantRatio = formantRatio;
}

void PitchShiftEngine::readWindowedInput() noexcept
{
    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        auto* frame = channel.lowFrame.data();

        if (appliedRatio < 1.0f)
        {
            readStretchedInput (channel);
        }
        else
        {
            for (int j = 0; j < frameSize; ++j)
                frame[j] = channel.inRing[static_cast<std::size_t> ((inPos + j) & inRingMask)]
                           * tables.wideWindow[static_cast<std::size_t> (j)];
        }

        // An alternating offset keeps a silent frame free of denormals and of magnitudes that are exactly zero.
        for (int j = 0; j < frameSize; j += 2)
        {
            frame[j] -= denormalGuard;
            frame[j + 1] += denormalGuard;
        }
    }
}

void PitchShiftEngine::readStretchedInput (Channel& channel) const noexcept
{
    const auto* ring = channel.inRing.data();

    for (int j = 0; j < frameSize; ++j)
    {
        const auto position =
            static_cast<float> (j) * ratioHistory[static_cast<std::size_t> ((inPos + j) & inRingMask)];
        auto& sample = channel.lowFrame[static_cast<std::size_t> (j)];
        sample = 0.0f;

        if (position < static_cast<float> (frameSize))
        {
            const auto index = static_cast<int> (position);
            const auto here = ring[(inPos + index) & inRingMask];
            const auto next = ring[(inPos + index + 1) & inRingMask];
            sample = (here + (next - here) * (position - static_cast<float> (index)))
                     * tables.wideWindow[static_cast<std::size_t> (j)];
        }
    }
}

void PitchShiftEngine::measureMagnitudes() noexcept
{
    std::fill_n (sumScratch.begin(), binCount, 0.0f);

    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        const SpectrumView spectrum (channel.lowFrame.data(), binCount);

        for (int k = 0; k < activeBins; ++k)
        {
            const auto magnitude = spectrum.get (k).magnitude();
            channel.magnitude[static_cast<std::size_t> (k)] = magnitude;
            sumScratch[static_cast<std::size_t> (k)] += magnitude;
        }
    }
}

void PitchShiftEngine::detectOnsets() noexcept
{
    // One lock state for all channels, so that they reset their phases together and the stereo image holds.
    for (std::size_t k = 0; k < static_cast<std::size_t> (activeBins); ++k)
    {
        const auto previous = previousSum[k];
        const auto current = sumScratch[k];
        const auto stable = previous >= onsetFloor && current / (previous + denormalGuard) <= tables.onsetThreshold[k];

        lockCount[k] = stable ? static_cast<std::uint8_t> (lockCount[k] + 1) : std::uint8_t { 0 };
        previousSum[k] = current;
    }
}

void PitchShiftEngine::spreadResetsOverPeaks() noexcept
{
    const auto* sum = previousSum.data(); // the current frame's by now
    const auto* locks = lockCount.data();
    const auto lowestBin = tables.peakStartBin;

    for (int k = 2; static_cast<float> (k) < lowestBin;)
    {
        const auto onsetOnPeak = locks[k] == 0 && sum[k - 1] < sum[k] && sum[k - 1] > sum[k - 2] && sum[k + 1] < sum[k]
                                 && sum[k + 1] > sum[k + 2];
        k = onsetOnPeak ? resetUpwards (k) : k + 1;
    }

    for (int k = static_cast<int> (lowestBin); k < activeBins - 2;)
    {
        const auto onsetOnPeak = locks[k] == 0 && sum[k] > sum[k - 1] && sum[k] > sum[k + 1];

        if (onsetOnPeak)
            resetDownwards (k, lowestBin);

        k = onsetOnPeak ? resetUpwards (k) : k + 1;
    }
}

/** Resets the bins above a peak as far as they fall. Returns the bin where that ends: it is the next one to be examined. */
int PitchShiftEngine::resetUpwards (int bin) noexcept
{
    auto j = static_cast<std::size_t> (bin) + 1;

    for (; static_cast<int> (j) < activeBins - 1 && previousSum[j - 1] > previousSum[j]; ++j)
        lockCount[j] = 0;

    return static_cast<int> (j);
}

void PitchShiftEngine::resetDownwards (int bin, float lowestBin) noexcept
{
    for (int j = bin - 1; static_cast<float> (j) >= lowestBin; --j)
    {
        const auto k = static_cast<std::size_t> (j);

        if (previousSum[k + 1] <= previousSum[k])
            return;

        lockCount[k] = 0;
    }
}

void PitchShiftEngine::advancePhases() noexcept
{
    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        const SpectrumView spectrum (channel.lowFrame.data(), binCount);
        const SpectrumView advance (channel.advance.data(), binCount);
        const SpectrumView lastPhasor (channel.lastPhasor.data(), binCount);

        for (int k = 0; k < activeBins; ++k)
        {
            auto& locked = lockCount[static_cast<std::size_t> (k)];
            const auto gain = 1.0f / (channel.magnitude[static_cast<std::size_t> (k)] + denormalGuard);
            const auto phasor = spectrum.get (k).scaled (gain);
            auto turned = phasor;

            if (locked != 0)
            {
                turned = phasor.timesConjugate (lastPhasor.get (k));

                // The count is shared: restarting it here leaves the second channel's advance as it is.
                if (locked == renormaliseAdvanceAt)
                {
                    turned = turned.normalised();
                    locked = 1;
                }
            }

            advance.set (k, turned);
            lastPhasor.set (k, phasor);
        }

        for (int k = activeBins; k < binCount; ++k)
        {
            advance.set (k, { 1.0f, 0.0f });
            lastPhasor.set (k, { 1.0f, 0.0f });
        }
    }

    std::fill (lockCount.begin() + activeBins, lockCount.end(), std::uint8_t { 0 });
}

void PitchShiftEngine::warpEnvelope() noexcept
{
    auto* envelope = sumScratch.data();
    envelope[binCount] = envelopeSentinel;

    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        std::copy_n (channel.magnitude.begin(), binCount, envelope);
        smoothIntoEnvelope (envelope, tables.envelopeCoeff.data(), binCount);

        for (int k = 0; k < binCount; ++k)
        {
            const auto position = static_cast<float> (k) * formantRatio;
            const auto flattened = channel.magnitude[static_cast<std::size_t> (k)] / envelope[k];
            channel.shapedMagnitude[static_cast<std::size_t> (k)] =
                flattened
                * (position < static_cast<float> (binCount) ? interpolated (envelope, position) : envelopeBeyondTop);
        }
    }
}
} // namespace tarvelline
