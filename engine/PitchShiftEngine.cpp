// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/PitchShiftEngine.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cstdint>
#include <iterator>
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
float heldToRange (float ratio) noexcept { return std::min (std::max (minimumRatio, ratio), maximumRatio); }

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

void PitchShiftEngine::prepare (std::shared_ptr<EngineResources> shared, float newWaitingShare)
{
    resources = std::move (shared);
    waitingShare = newWaitingShare;
    frameSize = resources->transform.getLength();
    binCount = frameSize / 2;
    geometry = { frameSize, 1.0f };
    ringLength = frameSize + geometry.analysisHop;

    const auto n = static_cast<std::size_t> (frameSize), k = n / 2, more = static_cast<std::size_t> (readAhead);
    const auto ring = static_cast<std::size_t> (ringLength);
    ratioHistory.resize (2 * ring);
    lockCount.resize (k);
    magnitudeSum.resize (k);
    windows.prepare (resources->tables, frameSize);

    for (auto& channel : channelState)
    {
        channel.inRing.resize (2 * ring + more);
        channel.outRing.resize (n);

        for (auto* perBin : { &channel.magnitude, &channel.shapedMagnitude })
            perBin->resize (k);

        for (auto* spectrum : { &channel.advance, &channel.lastPhasor, &channel.synthPhasor })
            spectrum->resize (n);
    }

    requestedRatio = appliedRatio = 1.0f;
    formantRatio = appliedFormantRatio = 1.0f;
    position = outPosition = 0;
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
    postponedAnalysis.waits = postponedHighBand.waits = false;
}

void PitchShiftEngine::setRatios (float pitchRatio, float newFormantRatio) noexcept
{
    requestedRatio = heldToRange (pitchRatio);
    formantRatio = newFormantRatio >= 0.0f ? newFormantRatio : minimumFormantRatio;
}

void PitchShiftEngine::process (const EngineRun& run) noexcept TARVELLINE_REAL_TIME
{
    assert (resources != nullptr && run.channels >= 1 && run.channels <= maxChannels);

    if (run.channels != channelCount)
        finishPostponed();

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

/** Up to the next frame, or to the end of a ring. At least 1: a hop may have become shorter than the time since a frame. */
int PitchShiftEngine::samplesToBoundary() const noexcept
{
    const auto toFrame = std::min (geometry.analysisHop - analysisCounter, geometry.synthesisHop - synthesisCounter);
    return std::min ({ std::max (toFrame, 1), ringLength - position, frameSize - outPosition });
}

void PitchShiftEngine::recordRatios (const float* ratios, int count) noexcept
{
    auto* history = ratioHistory.data() + position;

    std::transform (ratios, ratios + count, history, heldToRange);
    std::copy_n (history, count, history + ringLength);

    const auto lastOther = std::find_if (std::reverse_iterator (history + count), std::reverse_iterator (history),
                                         [] (float ratio) { return ratio != 1.0f; });
    const auto atUnity = static_cast<int> (history + count - lastOther.base());
    unityRun = atUnity < count ? atUnity : std::min (unityRun + count, frameSize);
}

void PitchShiftEngine::writeInput (Channel& channel, const float* samples, int count) noexcept
{
    auto* ring = channel.inRing.data() + position;

    std::transform (samples, samples + count, ring, soundSample);
    std::copy_n (ring, count, ring + ringLength);
}

void PitchShiftEngine::readOutput (const Channel& channel, float* samples, int count) const noexcept
{
    std::copy_n (channel.outRing.data() + outPosition, count, samples);
}

/** Moves the cursors on, and makes the frames that are due. */
void PitchShiftEngine::advance (int samples) noexcept
{
    position = (position + samples) % ringLength;
    outPosition = (outPosition + samples) % frameSize;
    analysisCounter += samples;
    synthesisCounter += samples;
    postponedAnalysis.samples -= samples;
    postponedHighBand.samples -= samples;

    if (analysisCounter >= geometry.analysisHop)
    {
        finishAnalysis();
        analysisCounter = 0;
        postponeAnalysis();
    }

    if (synthesisCounter >= geometry.synthesisHop)
    {
        finishPostponed();
        synthesisCounter = 0;
        synthesiseLowBand();
        postponeHighBand();
        updateRatio();
    }

    if (postponedHighBand.samples <= 0)
        finishHighBand();

    if (postponedAnalysis.samples <= 0)
        finishAnalysis();
}

/** The share of `longest` samples that work waits. Where they are few it would only meet the work of the next frame. */
int PitchShiftEngine::waitOf (int longest) const noexcept
{
    constexpr int worthWaiting = 64; // samples
    return longest < worthWaiting ? 0 : static_cast<int> (static_cast<float> (longest) * waitingShare);
}

/** Until at most the next frame, of either kind. */
void PitchShiftEngine::postponeAnalysis() noexcept
{
    const auto wait = waitOf (std::min (geometry.analysisHop, geometry.synthesisHop - synthesisCounter));
    postponedAnalysis = { { true, wait }, position + ringLength - frameSize, formantRatio };
}

void PitchShiftEngine::finishAnalysis() noexcept
{
    if (! std::exchange (postponedAnalysis.waits, false))
        return;

    finishHighBand(); // of the analysis before
    analyseFrame();
}

void PitchShiftEngine::finishPostponed() noexcept
{
    finishAnalysis();
    finishHighBand();
}

void PitchShiftEngine::updateRatio() noexcept
{
    if (requestedRatio == appliedRatio)
        return;

    const auto oldSpan = geometry.synthesisSpan;
    appliedRatio = requestedRatio;
    geometry = { frameSize, appliedRatio };
    const auto keptSpan = std::min (oldSpan, geometry.synthesisSpan);

    if (keptSpan < windows.narrowEnd)
        finishHighBand();

    clearOutput (keptSpan, std::max (oldSpan, geometry.synthesisSpan));
}

void PitchShiftEngine::clearOutput (int firstOffset, int endOffset) noexcept
{
    for (int c = 0; c < channelCount; ++c)
        for (int j = firstOffset; j < endOffset; ++j)
            channelState[static_cast<std::size_t> (c)]
                .outRing[static_cast<std::size_t> ((outPosition + j) % frameSize)] = 0.0f;
}
} // namespace tarvelline
