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
constexpr float minimumRatio = 1.0e-10f;
constexpr float maximumRatio = 96.0f;
constexpr float minimumFormantRatio = 0.001f; // in place of a negative one
constexpr float loudestSample = 1.0e4f;       // +80 dBFS: no signal, and its square would soon leave single precision

/** Written so that a NaN, for which every comparison is false, ends at the lower bound. */
float heldToRange (float ratio) noexcept
{
    return ratio >= minimumRatio ? std::min (ratio, maximumRatio) : minimumRatio;
}

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
    resources = std::move (shared);
    frameSize = resources->transform.getLength();
    binCount = frameSize / 2;

    const auto n = static_cast<std::size_t> (frameSize), k = n / 2, more = static_cast<std::size_t> (readAhead);
    ratioHistory.resize (2 * n);
    lockCount.resize (k);
    magnitudeSum.resize (k);
    windows.prepare (resources->tables, frameSize);

    for (auto& channel : channelState)
    {
        channel.inRing.resize (2 * n + more);
        channel.outRing.resize (n);

        for (auto* perBin : { &channel.magnitude, &channel.shapedMagnitude })
            perBin->resize (k);

        for (auto* spectrum : { &channel.advance, &channel.lastPhasor, &channel.synthPhasor })
            spectrum->resize (n);
    }

    requestedRatio = appliedRatio = 1.0f;
    formantRatio = appliedFormantRatio = 1.0f;
    geometry = { frameSize, 1.0f };
    position = 0;
    channelCount = maxChannels;
    reset();
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

    analysedBins = binCount; // of those that rest now none is at rest
    analysisCounter = synthesisCounter = 0;
}

void PitchShiftEngine::setRatios (float pitchRatio, float newFormantRatio) noexcept
{
    requestedRatio = heldToRange (pitchRatio);
    formantRatio = newFormantRatio >= 0.0f ? newFormantRatio : minimumFormantRatio;
}

void PitchShiftEngine::process (const EngineRun& run) noexcept TARVELLINE_REAL_TIME
{
    assert (resources != nullptr && run.channels >= 1 && run.channels <= maxChannels);
    channelCount = run.channels;

    for (int done = 0; done < run.count;)
    {
        const auto count = std::min (samplesToBoundary(), run.count - done);
        recordRatios (run.pitchRatios + done, count);

        for (int c = 0; c < channelCount; ++c)
        {
            auto& channel = channelState[static_cast<std::size_t> (c)];
            writeInput (channel, run.in[c] + done, count);
            readOutput (channel, run.out[c] + done, count);
        }

        done += count;
        setRatios (run.pitchRatios[done - 1], run.formantRatios[done - 1]);
        advance (count);
    }
}

/** Up to the next frame, or to the end of the rings. At least 1: a hop may have become shorter than the time since a frame. */
int PitchShiftEngine::samplesToBoundary() const noexcept
{
    const auto toFrame = std::min (geometry.analysisHop - analysisCounter, geometry.synthesisHop - synthesisCounter);
    return std::min (std::max (toFrame, 1), frameSize - position);
}

void PitchShiftEngine::recordRatios (const float* ratios, int count) noexcept
{
    auto* history = ratioHistory.data() + position;

    for (int i = 0; i < count; ++i)
    {
        history[i] = history[i + frameSize] = heldToRange (ratios[i]);
        unityRun = history[i] == 1.0f ? unityRun + 1 : 0;
    }

    unityRun = std::min (unityRun, frameSize);
}

void PitchShiftEngine::writeInput (Channel& channel, const float* samples, int count) noexcept
{
    auto* ring = channel.inRing.data() + position;

    for (int i = 0; i < count; ++i)
        ring[i] = ring[i + frameSize] = soundSample (samples[i]);
}

void PitchShiftEngine::readOutput (const Channel& channel, float* samples, int count) const noexcept
{
    std::copy_n (channel.outRing.data() + position, count, samples);
}

/** Moves the cursors on, and makes the frames that are due. */
void PitchShiftEngine::advance (int samples) noexcept
{
    position = (position + samples) % frameSize;
    analysisCounter += samples;
    synthesisCounter += samples;

    if (analysisCounter >= geometry.analysisHop)
    {
        analysisCounter = 0;
        analyseFrame();
    }

    if (synthesisCounter >= geometry.synthesisHop)
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

    const auto oldSpan = geometry.synthesisSpan;
    appliedRatio = requestedRatio;
    geometry = { frameSize, appliedRatio };
    clearOutput (std::min (oldSpan, geometry.synthesisSpan), std::max (oldSpan, geometry.synthesisSpan));
    windows.layOver (geometry.synthesisSpan, resources->low[0].data());
}

void PitchShiftEngine::clearOutput (int firstOffset, int endOffset) noexcept
{
    for (int c = 0; c < channelCount; ++c)
        for (int j = firstOffset; j < endOffset; ++j)
            channelState[static_cast<std::size_t> (c)].outRing[static_cast<std::size_t> ((position + j) % frameSize)] =
                0.0f;
}
} // namespace tarvelline
