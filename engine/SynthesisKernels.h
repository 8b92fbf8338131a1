// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <cstddef>

namespace tarvelline
{
/** The loops of the synthesis frame over bins and samples, on the best instruction set of this machine. */
namespace kernels
{
/** One channel's bins, K = binCount; pair layout as in AnalysisBins. */
struct SynthesisBins
{
    const float *magnitude, *advance;
    const float *lockCount, *lowBandWeight;
    float* phasor;
    float *low, *high; // spectra of the two bands: nothing is written beyond their bins
    std::size_t binCount, activeBins;
    std::size_t lowBins; // of the active ones those of the low band
    float gain;
};

/** Turns each phasor of the low band on by its advance, or sets it to it where the bin is reset, and makes the low band's
    spectrum. */
void turnLowBand (const SynthesisBins&) noexcept;

/** The same for all other phasors, and the high band's spectrum of all of them: call it after turnLowBand(). */
void turnHighBand (const SynthesisBins&) noexcept;

/** A frame of N samples a channel, one entry more to interpolate into and readAhead, on its way into a ring of N. */
struct OverlapAdd
{
    struct Channel
    {
        const float* frame;
        float* ring;
    };

    std::array<Channel, 2> channels;
    std::size_t channelCount; // 1 or 2
    const float* ratios;      // of each output sample
    const float* window;      // at each output sample from `from` on
    std::size_t from, end;    // output samples
    std::size_t length;       // N
    std::size_t overlap;      // of the output samples, those that earlier frames reach: added to, the others replaced
    std::size_t ringStart;    // where output sample 0 goes
};

/** Reads the frame between its samples: at j * ratio, where that is inside the frame. */
void overlapAddCompressed (const OverlapAdd&) noexcept;

/** Takes the frame's samples as they are, where j * ratio is inside the frame. */
void overlapAddStretched (const OverlapAdd&) noexcept;

/** Takes all of the frame's samples as they are. */
void overlapAddWhole (const OverlapAdd&) noexcept;

/** entries[j] = table[index j, truncated]; `length` entries of the table are used, and readAhead more may be touched. */
void takeEntries (const float* table, std::size_t length, const float* indices, float* entries,
                  std::size_t count) noexcept;
} // namespace kernels
} // namespace tarvelline
