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

/** Turns each phasor on by its advance, or sets it to it where the bin is reset, and makes the two bands' spectra. */
void turnPhasors (const SynthesisBins&) noexcept;

/** Two frames of N samples a channel, one entry more to interpolate into and readAhead, on their way into a ring of N. */
struct OverlapAdd
{
    struct Channel
    {
        const float *low, *high;
        float* ring;
    };

    std::array<Channel, 2> channels;
    std::size_t channelCount;           // 1 or 2
    const float* ratios;                // of each output sample: it is read at j * ratio, if that is inside the frame
    const float *wide, *narrow;         // the bands' windows at each output sample
    std::size_t narrowStart, narrowEnd; // outside these the narrow window is 0
    std::size_t length;                 // N
    std::size_t span;                   // output samples
    std::size_t overlap;                // of them, those that earlier frames reach: added to, the others replaced
    std::size_t ringStart;              // where output sample 0 goes
};

/** Reads the frames between their samples. */
void overlapAddCompressed (const OverlapAdd&) noexcept;

/** Takes the frames' samples as they are; only the low band asks whether j * ratio is inside the frame. */
void overlapAddStraight (const OverlapAdd&) noexcept;

/** entries[j] = table[index j, truncated]; `length` entries of the table are used, and readAhead more may be touched. */
void takeEntries (const float* table, std::size_t length, const float* indices, float* entries,
                  std::size_t count) noexcept;
} // namespace kernels
} // namespace tarvelline
