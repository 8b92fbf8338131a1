// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/PitchShiftEngine.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <limits>
#include <utility>

namespace tarvelline
{
namespace
{
constexpr float hopShare = 1.0f / 8.0f;  // hops are spans over the overlap factor of 8
constexpr float resynthesisGain = 0.26f; // eight overlapping squared sine windows sum to 4: 1.04 in all
constexpr int minimumInitialSpan = 400;  // samples; the shortest synthesis span that an engine starts with ...
constexpr int minimumSpan = 250;         // ... and the shortest that a ratio leads to
constexpr float minimumRatio = 1.0e-10f;
constexpr float maximumRatio = 96.0f;
constexpr float minimumFormantRatio = 0.001f; // in place of a negative one
constexpr float loudestSample = 1.0e4f;       // +80 dBFS: no signal, and its square would soon leave single precision

/** Written so that a NaN, for which every comparison is false, ends at the lower bound. */
float heldToRange (float ratio) noexcept
{
    return ratio >= minimumRatio ? std::min (ratio, maximumRatio) : minimumRatio;
}

int scaledLength (int length, float factor) noexcept { return static_cast<int> (static_cast<float> (length) * factor); }

constexpr auto quietestBits = std::bit_cast<std::uint32_t> (std::numeric_limits<float>::min()); // of normal numbers
constexpr auto loudestBits = std::bit_cast<std::uint32_t> (loudestSample);

/** The sample, or 0 for what is none: an infinity would stay in the running phasors for ever, and denormals make arithmetic
    slow. Goes by the bits of the magnitude, which are in the order of the magnitudes and tell denormals apart even where the
    processor is set to take these for 0. */
float soundSample (float sample) noexcept
{
    const auto magnitude = std::bit_cast<std::uint32_t> (sample) & 0x7fffffffu;
    return magnitude >= quietestBits && magnitude <= loudestBits ? sample : 0.0f;
}
} // namespace

void PitchShiftEngine::prepare (int frameLength, float frequencyScale, float sampleRate)
{
    prepare (std::make_shared<EngineResources> (frameLength, frequencyScale, sampleRate));
}

void PitchShiftEngine::prepare (std::shared_ptr<EngineResources> shared)
{
    ready = false;
    resources = std::move (shared);
    frameSize = resources->transform.getLength();
    inRingMask = frameSize - 1;
    outRingMask = 2 * frameSize - 1;
    binCount = frameSize / 2;
    outputGain = resynthesisGain / static_cast<float> (frameSize);

    const auto n = static_cast<std::size_t> (frameSize), k = n / 2, more = static_cast<std::size_t> (readAhead);
    ratioHistory.resize (2 * n);
    lockCount.resize (k);
    magnitudeSum.resize (k);
    wideOverSpan.resize (n);
    narrowOverSpan.resize (n);

    for (auto& channel : channelState)
    {
        channel.inRing.resize (2 * n + more);
        channel.outRing.resize (2 * n);

        for (auto* perBin : { &channel.magnitude, &channel.shapedMagnitude })
            perBin->resize (k);

        for (auto* spectrum : { &channel.advance, &channel.lastPhasor, &channel.synthPhasor })
            spectrum->resize (n);
    }

    requestedRatio = appliedRatio = 1.0f;
    formantRatio = appliedFormantRatio = 1.0f;
    inPos = outPos = 0;
    channelCount = maxChannels;
    reset();

    analysisSpan = frameSize;
    analysisHop = scaledLength (analysisSpan, hopShare);
    synthesisSpan = std::max (frameSize, minimumInitialSpan);
    synthesisHop = scaledLength (synthesisSpan, hopShare);
    overlapLength = frameSize - analysisHop;
    activeBins = binCount;
    windowedSpan = 0; // of other tables
    resampleWindows();
    ready = true;
}

void PitchShiftEngine::reset() noexcept
{
    const auto clear = [] (auto& buffer) { std::fill (buffer.begin(), buffer.end(), 0.0f); };

    std::fill (ratioHistory.begin(), ratioHistory.end(), requestedRatio);
    unityRun = requestedRatio == 1.0f ? frameSize : 0;
    clear (lockCount);
    clear (magnitudeSum);

    for (auto& channel : channelState)
        for (auto* buffer : { &channel.inRing, &channel.outRing, &channel.magnitude, &channel.shapedMagnitude,
                              &channel.advance, &channel.lastPhasor })
            clear (*buffer); // synthPhasor stays: with every bin unlocked the next frame overwrites it

    analysisCounter = synthesisCounter = 0;
}

void PitchShiftEngine::setRatios (float pitchRatio, float newFormantRatio) noexcept
{
    requestedRatio = heldToRange (pitchRatio);
    formantRatio = newFormantRatio >= 0.0f ? newFormantRatio : minimumFormantRatio;
}

void PitchShiftEngine::processFrame (const float* in, float* out, int channels) noexcept
{
    const float* const inputs[] = { in, in + channels - 1 };
    float* const outputs[] = { out, out + channels - 1 };
    process ({ &requestedRatio, &formantRatio, inputs, outputs, channels, 1 });
}

void PitchShiftEngine::process (const EngineRun& run) noexcept TARVELLINE_REAL_TIME
{
    assert (ready && run.channels >= 1 && run.channels <= maxChannels);
    channelCount = run.channels;

    for (int done = 0; done < run.count;)
    {
        const auto count = std::min (samplesToBoundary(), run.count - done);
        exchangeSamples (run, done, count);
        done += count;
        setRatios (run.pitchRatios[done - 1], run.formantRatios[done - 1]);
        advance (count);
    }
}

/** Up to the next frame, or to the end of a ring. At least 1: a hop may have become shorter than the time since a frame. */
int PitchShiftEngine::samplesToBoundary() const noexcept
{
    const auto toFrame = std::min (analysisHop - analysisCounter, synthesisHop - synthesisCounter);
    return std::min (std::max (toFrame, 1), frameSize - inPos);
}

void PitchShiftEngine::exchangeSamples (const EngineRun& run, int first, int count) noexcept
{
    auto* ratios = ratioHistory.data() + inPos;

    for (int i = 0; i < count; ++i)
    {
        ratios[i] = ratios[i + frameSize] = heldToRange (run.pitchRatios[first + i]);
        unityRun = ratios[i] == 1.0f ? unityRun + 1 : 0;
    }

    unityRun = std::min (unityRun, frameSize);

    for (int c = 0; c < channelCount; ++c)
    {
        auto& channel = channelState[static_cast<std::size_t> (c)];
        const auto* in = run.in[c] + first;
        auto* ring = channel.inRing.data() + inPos;

        for (int i = 0; i < count; ++i)
            ring[i] = ring[i + frameSize] = soundSample (in[i]);

        std::copy_n (channel.outRing.data() + ((outPos - frameSize) & outRingMask), count, run.out[c] + first);
    }
}

/** Moves the cursors on, and makes the frames that are due. */
void PitchShiftEngine::advance (int samples) noexcept
{
    outPos = (outPos + samples) & outRingMask;
    inPos = (inPos + samples) & inRingMask;
    analysisCounter += samples;
    synthesisCounter += samples;

    if (analysisCounter >= analysisHop)
    {
        analysisCounter = 0;
        analyseFrame();
    }

    if (synthesisCounter >= synthesisHop)
    {
        synthesisCounter = 0;
        synthesiseFrame();
        updateRatio();
    }
}

void PitchShiftEngine::updateRatio() noexcept
{
    if (requestedRatio == appliedRatio)
        return;

    const auto oldSpan = synthesisSpan;
    appliedRatio = requestedRatio;

    if (appliedRatio < 1.0f)
        stretchAnalysis (appliedRatio);
    else
        compressSynthesis (appliedRatio);

    clearOutput (std::min (oldSpan, synthesisSpan), std::max (oldSpan, synthesisSpan));
    resampleWindows();
}

void PitchShiftEngine::stretchAnalysis (float ratio) noexcept
{
    analysisSpan = std::max (scaledLength (frameSize, ratio), minimumSpan);
    analysisHop = scaledLength (analysisSpan, hopShare);
    synthesisSpan = frameSize;
    synthesisHop = scaledLength (frameSize, hopShare);
    overlapLength = frameSize - synthesisHop;
    activeBins = scaledLength (binCount, ratio);
}

void PitchShiftEngine::compressSynthesis (float ratio) noexcept
{
    const auto inverseRatio = 1.0f / ratio;

    analysisSpan = frameSize;
    analysisHop = scaledLength (frameSize, hopShare);
    synthesisSpan = std::max (scaledLength (frameSize, inverseRatio), minimumSpan);
    synthesisHop = scaledLength (synthesisSpan, hopShare);
    overlapLength = synthesisSpan - synthesisHop;
    activeBins = scaledLength (binCount, inverseRatio);
}

void PitchShiftEngine::clearOutput (int firstOffset, int endOffset) noexcept
{
    const auto base = outPos - frameSize;

    for (int c = 0; c < channelCount; ++c)
        for (int j = firstOffset; j < endOffset; ++j)
            channelState[static_cast<std::size_t> (c)].outRing[static_cast<std::size_t> ((base + j) & outRingMask)] =
                0.0f;
}
} // namespace tarvelline
