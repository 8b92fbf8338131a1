// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvelline
{
/** What a frame's summed magnitudes s[k] do from bin to bin: a bit a bin, in words of 64 and one word more.
    Allocates when it is made. */
struct BinMasks
{
    static constexpr std::size_t wordBits = 64;

    explicit BinMasks (std::size_t binCount)
        : resets (binCount / wordBits + 1), rises (resets.size()), falls (resets.size())
    {
    }

    std::vector<std::uint64_t> resets; // the bin's phase starts afresh in this frame
    std::vector<std::uint64_t> rises;  // s[k] > s[k - 1]; never bin 0
    std::vector<std::uint64_t> falls;  // s[k] < s[k - 1]; never bin 0
};

/** An onset on a spectral peak is one event: resets the peak's flanks along with it, upwards as far as the magnitudes fall
    and downwards likewise. Below `fullTestBin` a peak needs two falling bins on each side, and its lower flank is left alone.
    Bits from `activeBins` on mean nothing. Real-time safe. */
void spreadResetsOverPeaks (BinMasks&, std::size_t activeBins, std::size_t fullTestBin) noexcept;
} // namespace tarvelline
