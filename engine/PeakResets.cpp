// SPDX-License-Identifier: GPL-3.0-or-later
// No decision waits for another: a bin that a flank resets is no peak, since it falls away from one. So all peaks are found
// at once, 64 bins a word, and their resets then run along the flanks as a carry runs through ones.
#include "engine/PeakResets.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
using Word = std::uint64_t;
constexpr auto wordBits = BinMasks::wordBits;

/** The word's bits of bins from `first` up to `end`. */
Word bitsBetween (std::size_t word, std::size_t first, std::size_t end) noexcept
{
    const auto start = word * wordBits;
    const auto below = [start] (std::size_t bin) // all bits of bins below that one
    {
        const auto count = bin < start ? 0 : bin - start;
        return count < wordBits ? (Word { 1 } << count) - 1 : ~Word { 0 };
    };

    return end <= first ? 0 : below (end) & ~below (first);
}

/** At the place of each bin the bit of the one `distance` further up, or of the one below. */
Word fromAbove (const std::vector<Word>& words, std::size_t word, std::size_t distance) noexcept
{
    return words[word] >> distance | words[word + 1] << (wordBits - distance);
}

Word fromBelow (const std::vector<Word>& words, std::size_t word) noexcept
{
    return words[word] << 1 | (word > 0 ? words[word - 1] >> (wordBits - 1) : 0);
}

/** Fills runs of `through` from the top down, each from below its seed as far as it goes; the seeds stay. */
Word filledDownwards (Word seeds, Word through) noexcept
{
    for (std::size_t distance = 1; distance < wordBits && seeds != 0; distance *= 2)
    {
        seeds |= through & (seeds >> distance);
        through &= through >> distance;
    }

    return seeds;
}

/** The bins of a word that are reset and louder than both neighbours; below `fullTestBin` these must fall away too. */
Word resetPeaks (const BinMasks& masks, std::size_t word, std::size_t fullTestBin, std::size_t end) noexcept
{
    const auto peaks = masks.resets[word] & masks.rises[word] & fromAbove (masks.falls, word, 1);
    const auto isolated = peaks & fromBelow (masks.rises, word) & fromAbove (masks.falls, word, 2);
    return (peaks & bitsBetween (word, fullTestBin, end))
           | (isolated & bitsBetween (word, 2, std::min (fullTestBin, end)));
}
} // namespace

void spreadResetsOverPeaks (BinMasks& masks, std::size_t activeBins, std::size_t fullTestBin) noexcept
{
    if (activeBins < 3)
        return;

    const auto words = (activeBins - 1) / wordBits + 1;
    Word entering = 0; // the bit that comes from the word before

    for (std::size_t w = 0; w < words; ++w)
    {
        const auto peaks = resetPeaks (masks, w, fullTestBin, activeBins - 2);
        const auto flanks = masks.falls[w] & bitsBetween (w, 0, activeBins - 1);
        const auto starts = (peaks << 1 | entering) & flanks;
        const auto reached = flanks & ~(flanks + starts); // the carry clears the flank that it runs along
        masks.resets[w] |= reached;
        entering = (peaks | reached) >> (wordBits - 1);
    }

    for (auto w = words; w-- > 0;)
    {
        const auto above = bitsBetween (w, fullTestBin, activeBins);
        const auto peaks = resetPeaks (masks, w, fullTestBin, activeBins - 2) & above;
        const auto flanks = fromAbove (masks.rises, w, 1) & above;
        const auto reached = filledDownwards (peaks | (flanks & entering << (wordBits - 1)), flanks);
        masks.resets[w] |= reached;
        entering = reached & 1;
    }
}
} // namespace tarvelline
