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
/** The phasors of the vector at bin k, turned on. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE Complex<V> turnedPhasor (D d, const SynthesisBins& bins, std::size_t k)
{
    const auto running = pairs (bins.phasor, bins.binCount);
    const auto count = hn::LoadU (d, bins.lockCount + k);
    const Complex advance { hn::LoadU (d, bins.advance + k), hn::LoadU (d, bins.advance + bins.binCount + k) };
    auto phasor = choose (hn::Eq (count, hn::Zero (d)), advance, load (d, running, k) * advance);
    phasor = normalisedWhere (d, hn::Eq (count, hn::Set (d, static_cast<float> (renormaliseSynthesisAt))), phasor);
    store (d, phasor, running, k);
    return phasor;
}

template <class D>
HWY_INLINE hn::Vec<D> gainAt (D d, const SynthesisBins& bins, std::size_t k)
{
    return hn::Mul (hn::Set (d, bins.gain), hn::LoadU (d, bins.magnitude + k));
}

template <class D>
HWY_INLINE hn::Vec<D> lowGainAt (D d, const SynthesisBins& bins, std::size_t k)
{
    return hn::Mul (gainAt (d, bins, k), hn::LoadU (d, bins.lowBandWeight + k));
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeBand (D d, const Complex<V>& phasor, V gain, float* band, const SynthesisBins& bins, std::size_t k)
{
    store (d, Complex<V> { hn::Mul (phasor.re, gain), hn::Mul (phasor.im, gain) }, pairs (band, bins.binCount), k);
}

void TurnLowBand (const SynthesisBins& given)
{
    const auto bins = given; // a copy, which no store into a buffer can change: it stays in registers
    forEachVector (0, bins.lowBins,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   { storeBand (d, turnedPhasor (d, bins, k), lowGainAt (d, bins, k), bins.low, bins, k); });
}

void TurnHighBand (const SynthesisBins& given)
{
    const auto bins = given;
    forEachVector (0, bins.lowBins,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   {
                       const auto rest = hn::Sub (gainAt (d, bins, k), lowGainAt (d, bins, k));
                       storeBand (d, load (d, pairs (bins.phasor, bins.binCount), k), rest, bins.high, bins, k);
                   });
    forEachVector (bins.lowBins, bins.activeBins,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   { storeBand (d, turnedPhasor (d, bins, k), gainAt (d, bins, k), bins.high, bins, k); });
}

/** Takes the frame's samples as they are. */
template <class D>
class WholeReader
{
public:
    HWY_INLINE WholeReader (D, const OverlapAdd&, std::size_t sample) : j (sample) {}

    HWY_INLINE hn::Vec<D> operator() (const float* frame) const { return hn::LoadU (D(), frame + j); }

private:
    std::size_t j;
};

/** The same, without those that would lie beyond the frame. */
template <class D>
class StretchedReader
{
public:
    HWY_INLINE StretchedReader (D d, const OverlapAdd& job, std::size_t sample)
        : inside (hn::Lt (positionOf (d, sample, job.ratios), hn::Set (d, static_cast<float> (job.length)))),
          read (d, job, sample)
    {
    }

    HWY_INLINE hn::Vec<D> operator() (const float* frame) const { return hn::IfThenElseZero (inside, read (frame)); }

private:
    hn::Mask<D> inside;
    WholeReader<D> read;
};

/** Reads the frame between its samples, at j times the ratio; beyond the frame there is nothing. */
template <class D>
class CompressedReader
{
public:
    HWY_INLINE CompressedReader (D d, const OverlapAdd& job, std::size_t sample)
        : CompressedReader (d, positionOf (d, sample, job.ratios), static_cast<float> (job.length))
    {
    }

    HWY_INLINE hn::Vec<D> operator() (const float* frame) const { return hn::IfThenElseZero (inside, read (frame)); }

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
    bool adds; // to what is there
};

/** Calls take (Stretch) for the stretches between the ring's end and the end of the overlap. */
template <typename Take>
HWY_INLINE void forEachStretch (const OverlapAdd& job, const Take& take)
{
    const auto wrap = job.length - job.ringStart; // the output sample that goes to the ring's first place

    for (auto from = job.from; from < job.end;)
    {
        auto end = job.end;

        for (const auto boundary : { wrap, job.overlap })
            if (boundary > from)
                end = std::min (end, boundary);

        const auto offset = from < wrap ? job.ringStart : job.ringStart - job.length; // unsigned: j + offset is right
        take (Stretch { from, end, offset, from < job.overlap });
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
                                           const auto window = hn::LoadU (d, job.window + (j - job.from));

                                           for (std::size_t c = 0; c < job.channelCount; ++c)
                                           {
                                               const auto& channel = job.channels[c];
                                               auto* place = channel.ring + (j + stretch.offset);
                                               const auto value = read (channel.frame);
                                               hn::StoreU (stretch.adds
                                                               ? hn::MulAdd (value, window, hn::LoadU (d, place))
                                                               : hn::Mul (value, window),
                                                           d, place);
                                           }
                                       });
                    });
}

void OverlapAddCompressed (const OverlapAdd& job) { addFrames<CompressedReader> (job); }
void OverlapAddStretched (const OverlapAdd& job) { addFrames<StretchedReader> (job); }
void OverlapAddWhole (const OverlapAdd& job) { addFrames<WholeReader> (job); }

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
HWY_EXPORT (TurnLowBand);
HWY_EXPORT (TurnHighBand);
HWY_EXPORT (OverlapAddCompressed);
HWY_EXPORT (OverlapAddStretched);
HWY_EXPORT (OverlapAddWhole);
HWY_EXPORT (TakeEntries);

namespace kernels
{
void turnLowBand (const SynthesisBins& bins) noexcept { HWY_DYNAMIC_DISPATCH (TurnLowBand) (bins); }
void turnHighBand (const SynthesisBins& bins) noexcept { HWY_DYNAMIC_DISPATCH (TurnHighBand) (bins); }
void overlapAddCompressed (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddCompressed) (job); }
void overlapAddStretched (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddStretched) (job); }
void overlapAddWhole (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddWhole) (job); }

void takeEntries (const float* table, std::size_t length, const float* indices, float* entries,
                  std::size_t count) noexcept
{
    HWY_DYNAMIC_DISPATCH (TakeEntries) (table, length, indices, entries, count);
}
} // namespace kernels
} // namespace tarvelline
#endif
