// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineTables.h"
#include "engine/PeakResets.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvelline
{
/** The loops of the analysis frame over samples and bins, on the best instruction set of this machine. No two arrays of a
    call overlap unless it says so. Spectra and phasors have pair layout: bin k is (x[k], x[K + k]). */
namespace kernels
{
/** One frame's bins: K = binCount, of which the lowest activeBins are worked on. */
struct AnalysisBins
{
    struct Channel
    {
        const float* spectrum;
        float *magnitude, *advance, *lastPhasor;
    };

    std::array<Channel, 2> channels;
    std::size_t channelCount; // 1 or 2
    std::size_t binCount, activeBins;
    std::size_t lastActiveBins; // of the last frame
    const float* onsetThreshold;
    float* sum;       // magnitudes over channels: in, of the last frame; out, of this one
    float* lockCount; // whole numbers, 0 = phase reset
};

/** What a frame is made of that is read between the samples. */
struct StretchedRead
{
    std::array<const float*, 2> inputs; // N + 1 samples and readAhead
    std::array<float*, 2> frames;
    std::size_t channelCount; // 1 or 2
    const float* window;
    const float* ratios; // of each sample of the frame
    std::size_t length;  // N
};

/** frame[j] = input[j * ratios[j]] * window[j], nothing from input[N] on, with a trace of alternating sign that keeps silence
    off zero. */
void readStretched (const StretchedRead&) noexcept;

/** Magnitudes, their sum over channels, which bins are reset because they rose, and what the sums do from bin to bin. */
void measureBins (const AnalysisBins&, BinMasks&) noexcept;

/** Counts the frames for which each bin has not been reset, and makes unit phasors, and how far each has turned since the
    last frame where its bin is not reset. Bins above the active ones end at rest. A count of `renormaliseAdvanceAt` starts
    again at 1. */
void advancePhases (const AnalysisBins&, const std::vector<std::uint64_t>& resets) noexcept;

/** The spectral envelope of one or two channels, and where it is to go. */
struct EnvelopeWarp
{
    const EnvelopeSegments* segments; // of the smoother that makes the envelope
    std::array<const float*, 2> magnitudes;
    std::array<float*, 2> shaped;          // the magnitudes with their envelope moved
    std::size_t channelCount;              // 1 or 2
    std::size_t binCount;                  // K
    std::size_t bins;                      // the lowest ones, whose magnitudes are to be shaped
    float ratio;                           // frequency of the envelope in / out
    std::array<float*, 2> rows, envelopes; // scratch: K, and K + 1 with readAhead
};

void warpEnvelope (const EnvelopeWarp&) noexcept;
} // namespace kernels
} // namespace tarvelline
