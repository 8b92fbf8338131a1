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

/** Calls run (from, end, offset, adds, narrow), output sample j going to ring[j + offset], for the stretches of the output between the ring's end, the end of the
    overlap and the two ends of the narrow window. */
template <typename Run>
HWY_INLINE void forEachRun (const OverlapAdd& job, const Run& run)
{
    const auto wrap = 2 * job.length - job.ringStart; // the output sample that goes to the ring's first place

    for (std::size_t from = 0; from < job.span;)
    {
        auto end = job.span;

        for (const auto boundary : { wrap, job.overlap, job.narrowStart, job.narrowEnd })
            if (boundary > from)
                end = std::min (end, boundary);

        const auto offset =
            from < wrap ? job.ringStart : job.ringStart - 2 * job.length; // unsigned: j + offset is right
        run (from, end, offset, from < job.overlap, from >= job.narrowStart && from < job.narrowEnd);
        from = end;
    }
}

void OverlapAddInterpolated (const OverlapAdd& given)
{
    const auto job = given;
    const auto length = static_cast<float> (job.length);

    forEachRun (job,
                [=] (std::size_t from, std::size_t end, std::size_t offset, bool adds, bool narrow) HWY_ATTR
                {
                    forEachVector (from, end,
                                   [=] (auto d, std::size_t j) HWY_ATTR
                                   {
                                       const auto position = positionOf (d, j, job.ratios);
                                       const auto inside = hn::Lt (position, hn::Set (d, length));
                                       auto value = hn::Mul (interpolated (d, job.low, position, length),
                                                             hn::LoadU (d, job.wide + j));

                                       if (narrow)
                                           value = hn::MulAdd (interpolated (d, job.high, position, length),
                                                               hn::LoadU (d, job.narrow + j), value);

                                       value = hn::IfThenElseZero (inside, value);

                                       if (adds)
                                           value = hn::Add (value, hn::LoadU (d, job.ring + (j + offset)));

                                       hn::StoreU (value, d, job.ring + (j + offset));
                                   });
                });
}

void OverlapAddDirect (const OverlapAdd& given)
{
    const auto job = given;
    const auto length = static_cast<float> (job.length);

    forEachRun (job,
                [=] (std::size_t from, std::size_t end, std::size_t offset, bool adds, bool narrow) HWY_ATTR
                {
                    forEachVector (from, end,
                                   [=] (auto d, std::size_t j) HWY_ATTR
                                   {
                                       const auto inside = hn::Lt (positionOf (d, j, job.ratios), hn::Set (d, length));
                                       auto value = hn::IfThenElseZero (
                                           inside, hn::Mul (hn::LoadU (d, job.low + j), hn::LoadU (d, job.wide + j)));

                                       if (narrow)
                                           value = hn::MulAdd (hn::LoadU (d, job.high + j),
                                                               hn::LoadU (d, job.narrow + j), value);

                                       if (adds)
                                           value = hn::Add (value, hn::LoadU (d, job.ring + (j + offset)));

                                       hn::StoreU (value, d, job.ring + (j + offset));
                                   });
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
HWY_EXPORT (OverlapAddInterpolated);
HWY_EXPORT (OverlapAddDirect);

namespace kernels
{
void turnPhasors (const SynthesisBins& bins) noexcept { HWY_DYNAMIC_DISPATCH (TurnPhasors) (bins); }
void overlapAddInterpolated (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddInterpolated) (job); }
void overlapAddDirect (const OverlapAdd& job) noexcept { HWY_DYNAMIC_DISPATCH (OverlapAddDirect) (job); }
} // namespace kernels
} // namespace tarvelline
#endif
