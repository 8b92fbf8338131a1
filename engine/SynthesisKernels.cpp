// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/SynthesisKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/SynthesisKernels.cpp"
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
/** Turns the phasors of the vector at bin k, and gives each band its share of them. */
template <bool inBothBands, class D>
HWY_INLINE void turnPhasorsAt (D d, const SynthesisBins& bins, std::size_t k)
{
    const auto half = bins.binCount;
    const auto running = pairs (bins.phasor, half);
    const auto count = hn::LoadU (d, bins.lockCount + k);
    const Complex advance { hn::LoadU (d, bins.advance + k), hn::LoadU (d, bins.advance + half + k) };
    auto phasor = choose (hn::Eq (count, hn::Zero (d)), advance, load (d, running, k) * advance);
    phasor = normalisedWhere (d, hn::Eq (count, hn::Set (d, static_cast<float> (renormaliseSynthesisAt))), phasor);
    store (d, phasor, running, k);

    const auto storeBand = [&] (auto gain, float* band) HWY_ATTR {
        store (d, Complex { hn::Mul (phasor.re, gain), hn::Mul (phasor.im, gain) }, pairs (band, half), k);
    };
    const auto gain = hn::Mul (hn::Set (d, bins.gain), hn::LoadU (d, bins.magnitude + k));

    if constexpr (inBothBands)
    {
        const auto lowGain = hn::Mul (gain, hn::LoadU (d, bins.lowBandWeight + k));
        storeBand (lowGain, bins.low);
        storeBand (hn::Sub (gain, lowGain), bins.high);
    }
    else
    {
        storeBand (gain, bins.high);
    }
}

void TurnPhasors (const SynthesisBins& given)
{
    const auto bins = given; // a copy, which no store into a buffer can change: it stays in registers
    forEachVector (0, bins.lowBins, [=] (auto d, std::size_t k) HWY_ATTR { turnPhasorsAt<true> (d, bins, k); });
    forEachVector (bins.lowBins, bins.activeBins,
                   [=] (auto d, std::size_t k) HWY_ATTR { turnPhasorsAt<false> (d, bins, k); });
}

/** Takes the frames' samples as they are. Of the low band those that would lie beyond the frame are left out. */
template <class D>
class StraightReader
{
public:
    HWY_INLINE StraightReader (D, const OverlapAdd& job, std::size_t sample)
        : inside (hn::Lt (positionOf (D(), sample, job.ratios), hn::Set (D(), static_cast<float> (job.length)))),
          j (sample)
    {
    }

    HWY_INLINE hn::Vec<D> low (const float* frame) const { return hn::IfThenElseZero (inside, high (frame)); }
    HWY_INLINE hn::Vec<D> high (const float* frame) const { return hn::LoadU (D(), frame + j); }

private:
    hn::Mask<D> inside;
    std::size_t j;
};

/** Reads the frames between their samples, at j times the ratio; beyond the frame there is nothing. */
template <class D>
class CompressedReader
{
public:
    HWY_INLINE CompressedReader (D d, const OverlapAdd& job, std::size_t sample)
        : CompressedReader (d, positionOf (d, sample, job.ratios), static_cast<float> (job.length))
    {
    }

    HWY_INLINE hn::Vec<D> low (const float* frame) const { return hn::IfThenElseZero (inside, read (frame)); }
    HWY_INLINE hn::Vec<D> high (const float* frame) const { return low (frame); }

private:
    HWY_INLINE CompressedReader (D d, hn::Vec<D> position, float length)
        : inside (hn::Lt (position, hn::Set (d, length))), read (d, position, length)
    {
    }

    hn::Mask<D> inside;
    Interpolator<D> read;
};

/** Output samples from `from` up to `end`, all of one kind: they go to ring[j + offset]. */
struct Stretch
{
    std::size_t from, end, offset;
    bool adds, narrow; // to what is there; in both bands
};

/** Calls take (Stretch) for the stretches between the ring's end, the end of the overlap and the ends of the narrow window. */
template <typename Take>
HWY_INLINE void forEachStretch (const OverlapAdd& job, const Take& take)
{
    const auto wrap = job.length - job.ringStart; // the output sample that goes to the ring's first place

    for (std::size_t from = 0; from < job.span;)
    {
        auto end = job.span;

        for (const auto boundary : { wrap, job.overlap, job.narrowStart, job.narrowEnd })
            if (boundary > from)
                end = std::min (end, boundary);

        const auto offset = from < wrap ? job.ringStart : job.ringStart - job.length; // unsigned: j + offset is right
        take (Stretch { from, end, offset, from < job.overlap, from >= job.narrowStart && from < job.narrowEnd });
        from = end;
    }
}

template <template <class> class Reader>
HWY_INLINE void addFrames (const OverlapAdd& given)
{
    const auto job = given;

    forEachStretch (job,
                    [=] (const Stretch& stretch) HWY_ATTR
                    {
                        forEachVector (stretch.from, stretch.end,
                                       [=] (auto d, std::size_t j) HWY_ATTR
                                       {
                                           const Reader<decltype (d)> read (d, job, j);

                                           for (std::size_t c = 0; c < job.channelCount; ++c)
                                           {
                                               const auto& channel = job.channels[c];
                                               auto* place = channel.ring + (j + stretch.offset);
                                               auto value =
                                                   hn::Mul (read.low (channel.low), hn::LoadU (d, job.wide + j));

                                               if (stretch.narrow)
                                                   value = hn::MulAdd (read.high (channel.high),
                                                                       hn::LoadU (d, job.narrow + j), value);

                                               if (stretch.adds)
                                                   value = hn::Add (value, hn::LoadU (d, place));

                                               hn::StoreU (value, d, place);
                                           }
                                       });
                    });
}

void OverlapAddCompressed (const OverlapAdd& job) { addFrames<CompressedReader> (job); }
void OverlapAddStraight (const OverlapAdd& job) { addFrames<StraightReader> (job); }

void TakeEntries (const float* table, std::size_t length, const float* indices, float* entries, std::size_t count)
{
    forEachVector (0, count,
                   [=] (auto d, std::size_t j) HWY_ATTR
                   {
                       const Interpolator at (d, hn::LoadU (d, indices + j), static_cast<float> (length));
                       hn::StoreU (at.truncated (table), d, entries + j);
                   });
}
} // namespace
// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvelline
{
HWY_EXPORT (TurnPhasors);
HWY_EXPORT (OverlapAddCompressed);
HWY_EXPORT (OverlapAddStraight);
HWY_EXPORT (TakeEntries);

namespace kernels
{
void turnPhasors (const SynthesisBins& bins) noexcept { HWY_DYNAMIC_DISPATCH (TurnPhasors) (bins); }
void overlapAddCompressed (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddCompressed) (job); }
void overlapAddStraight (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddStraight) (job); }

void takeEntries (const float* table, std::size_t length, const float* indices, float* entries,
                  std::size_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH (TakeEntries) (table, length, indices, entries, count);
}
} // namespace kernels
} // namespace tarvelline
#endif
