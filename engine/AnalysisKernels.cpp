// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/AnalysisKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/AnalysisKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/BinMath-inl.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
using namespace kernels;

namespace
{
constexpr float onsetFloor = 1.0e-8f; // a bin this quiet in the last frame cannot rise: it starts afresh

/** -1e-10, +1e-10, ... from the element j on: keeps a silent frame free of denormals and of magnitudes that are zero. */
template <class D>
HWY_INLINE hn::Vec<D> alternatingGuard (D d, std::size_t j)
{
    const hn::RebindToSigned<D> di;
    const auto first = hn::Lanes (d) > 1 ? 1 : static_cast<int> (j + 1); // a vector starts at an even element
    const auto sign = hn::ShiftLeft<31> (hn::Iota (di, first));
    return hn::Or (hn::Set (d, denormalGuard), hn::BitCast (d, sign));
}

void ReadStretched (const StretchedRead& given)
{
    const auto job = given; // a copy, which no store into a buffer can change: it stays in registers
    const auto limit = static_cast<float> (job.length);

    forEachVector (0, job.length,
                   [=] (auto d, std::size_t j) HWY_ATTR
                   {
                       const auto position = positionOf (d, j, job.ratios);
                       const auto inside = hn::Lt (position, hn::Set (d, limit));
                       const Interpolator read (d, position, limit);

                       for (std::size_t c = 0; c < job.channelCount; ++c)
                       {
                           const auto sample = hn::Mul (read (job.inputs[c]), hn::LoadU (d, job.window + j));
                           hn::StoreU (hn::Add (hn::IfThenElseZero (inside, sample), alternatingGuard (d, j)), d,
                                       job.frames[c] + j);
                       }
                   });
}

/** The bins that are active no more: phasors at rest, phases to start afresh. Those above them are so already. */
void restUpperBins (const AnalysisBins& bins)
{
    if (bins.activeBins >= bins.lastActiveBins)
        return;

    for (std::size_t c = 0; c < bins.channelCount; ++c)
    {
        for (auto* phasors : { bins.channels[c].advance, bins.channels[c].lastPhasor })
        {
            std::fill (phasors + bins.activeBins, phasors + bins.lastActiveBins, 1.0f);
            std::fill (phasors + bins.binCount + bins.activeBins, phasors + bins.binCount + bins.lastActiveBins, 0.0f);
        }
    }

    std::fill (bins.lockCount + bins.activeBins, bins.lockCount + bins.lastActiveBins, 0.0f);
}

/** Magnitudes and their sums of the bins of one word; which of them are stable comes back, a bit a bin. */
HWY_INLINE std::uint64_t measureWord (const AnalysisBins& bins, std::size_t start, std::size_t end)
{
    std::uint64_t stable = 0;

    forEachVector (start, end,
                   [&] (auto d, std::size_t k) HWY_ATTR
                   {
                       auto sum = hn::Zero (d);

                       for (std::size_t c = 0; c < bins.channelCount; ++c)
                       {
                           const auto* spectrum = bins.channels[c].spectrum;
                           const auto magnitude = magnitudeOf (
                               d, { hn::LoadU (d, spectrum + k), hn::LoadU (d, spectrum + bins.binCount + k) });
                           hn::StoreU (magnitude, d, bins.channels[c].magnitude + k);
                           sum = hn::Add (sum, magnitude);
                       }

                       const auto previous = hn::LoadU (d, bins.sum + k);
                       const auto loudest = hn::Mul (hn::Add (previous, hn::Set (d, denormalGuard)),
                                                     hn::LoadU (d, bins.onsetThreshold + k));
                       const auto steady = hn::And (hn::Ge (previous, hn::Set (d, onsetFloor)), hn::Le (sum, loudest));
                       stable |= bitsOf (d, steady) << (k - start);
                       hn::StoreU (sum, d, bins.sum + k);
                   });

    return stable;
}

void MeasureBins (const AnalysisBins& given, BinMasks& masks)
{
    const auto bins = given;
    constexpr auto wordBits = BinMasks::wordBits;

    for (std::size_t start = 0; start < bins.activeBins; start += wordBits)
        masks.resets[start / wordBits] = ~measureWord (bins, start, std::min (start + wordBits, bins.activeBins));

    for (std::size_t start = 0; start < bins.activeBins; start += wordBits)
    {
        std::uint64_t rises = 0, falls = 0;

        forEachVector (std::max<std::size_t> (start, 1), std::min (start + wordBits, bins.activeBins),
                       [&] (auto d, std::size_t k) HWY_ATTR
                       {
                           const auto here = hn::LoadU (d, bins.sum + k), below = hn::LoadU (d, bins.sum + k - 1);
                           rises |= bitsOf (d, hn::Gt (here, below)) << (k - start);
                           falls |= bitsOf (d, hn::Lt (here, below)) << (k - start);
                       });

        masks.rises[start / wordBits] = rises;
        masks.falls[start / wordBits] = falls;
    }
}

void AdvancePhases (const AnalysisBins& given, const std::uint64_t* resets)
{
    const auto bins = given;

    forEachVector (0, bins.activeBins,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   {
                       const auto reset = maskAt (d, resets, k);
                       const auto one = hn::Set (d, 1.0f);
                       auto count = hn::IfThenZeroElse (reset, hn::Add (hn::LoadU (d, bins.lockCount + k), one));

                       for (std::size_t c = 0; c < bins.channelCount; ++c)
                       {
                           const auto& channel = bins.channels[c];
                           const auto* spectrum = channel.spectrum + k;
                           const auto size = hn::Add (hn::LoadU (d, channel.magnitude + k), hn::Set (d, denormalGuard));

                           // Divided, not multiplied by a reciprocal: its rounding would add up in long tones.
                           const Complex phasor { hn::Div (hn::LoadU (d, spectrum), size),
                                                  hn::Div (hn::LoadU (d, spectrum + bins.binCount), size) };
                           const auto lastPhasor = pairs (channel.lastPhasor, bins.binCount);
                           auto turned = phasor * conjugate (load (d, lastPhasor, k));

                           // The count is shared: restarting it leaves the second channel's advance as it is.
                           const auto due = hn::Eq (count, hn::Set (d, static_cast<float> (renormaliseAdvanceAt)));
                           turned = normalisedWhere (d, due, turned);
                           count = hn::IfThenElse (due, one, count);

                           store (d, choose (reset, phasor, turned), pairs (channel.advance, bins.binCount), k);
                           store (d, phasor, lastPhasor, k);
                       }

                       hn::StoreU (count, d, bins.lockCount + k);
                   });

    restUpperBins (bins);
}
} // namespace
// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvelline
{
HWY_EXPORT (ReadStretched);
HWY_EXPORT (MeasureBins);
HWY_EXPORT (AdvancePhases);

namespace kernels
{
void readStretched (const StretchedRead& job) noexcept { HWY_DYNAMIC_DISPATCH (ReadStretched) (job); }

void measureBins (const AnalysisBins& bins, BinMasks& masks) noexcept
{
    HWY_DYNAMIC_DISPATCH (MeasureBins) (bins, masks);
}

void advancePhases (const AnalysisBins& bins, const std::vector<std::uint64_t>& resets) noexcept
{
    HWY_DYNAMIC_DISPATCH (AdvancePhases) (bins, resets.data());
}
} // namespace kernels
} // namespace tarvelline
#endif
