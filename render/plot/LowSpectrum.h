// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/transform/HartleyTransform.h"

#include <vector>

namespace tarvelline::render
{
/** Power spectra of more samples than the engine's transform takes, up to the highest bin that is wanted.

    Method: decimation in time. N values are D transforms of every D-th of them, put together with the turns (twiddle factors)
            exp (-2 pi i k d / N), as the last pass of a transform of length N would, but for the lowest bins alone: most of
            a spectrum at a high rate is above what is shown. So the engine's fast transform serves, within its range, and no
            library is needed. */
class LowSpectrum
{
public:
    /** @param length  N, a power of two, 256 or more
        @param bins    how many from 0 Hz on; no more than N / 2 and HartleyTables::longest are had */
    LowSpectrum (int length, int bins);

    std::size_t getBins() const noexcept { return real.size(); }

    /** Adds the squared magnitudes of the bins, times `scale`, to `power`, which has getBins() values.
        @param samples  N or fewer, a multiple of D; zeros follow them */
    void addPower (const std::vector<float>& samples, float scale, std::vector<float>& power);

private:
    void addPart (std::size_t which);

    int parts;
    HartleyTransform transform;
    std::vector<float> part, cosines, sines; // of one part; of all parts' turns, one part after the other
    std::vector<float> real, imaginary;      // of the whole's bins
};
} // namespace tarvelline::render
