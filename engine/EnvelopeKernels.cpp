// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/AnalysisKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/EnvelopeKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/BinMath-inl.h"

#include <hwy/highway.h>

#include <array>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
using namespace kernels;

namespace
{
constexpr float envelopeFloor = 0.01f;     // the envelope divides the magnitudes: held well off zero
constexpr float envelopeBeyondTop = 0.01f; // what the envelope is taken for above its last bin
constexpr float envelopeSentinel = 0.001f; // the entry after the last bin, to interpolate into
constexpr int envelopeRounds = 2;

constexpr auto segmentCount = EnvelopeSegments::count;

/** What reaches each segment from the one before it, in the order of a pass. */
struct Carries
{
    alignas (64) std::array<float, segmentCount> values {};
};

/** A pass of the smoother is over when each segment is done from a state of 0; what the segment before would have handed on
    is added when its result is read. */
struct FinishedPass
{
    const float* products; // share of what is handed on that arrives at each bin
    std::array<Carries, 2> carries;
    float floor; // what the result is raised to
};

/** From bins in their order into the order of EnvelopeSegments, or back, four by four. The functions get both places. */
template <typename Move>
HWY_INLINE void forEachBlock (std::size_t steps, const Move& move)
{
    for (std::size_t segment = 0; segment < segmentCount; segment += 4)
        for (std::size_t i = 0; i < steps; i += 4)
            move (segment * steps + i, i * segmentCount + segment);
}

/** Four rows of four: rows become columns. */
HWY_INLINE void transposeBlock (const float* from, std::size_t fromStride, float* to, std::size_t toStride)
{
#if HWY_TARGET == HWY_SCALAR
    for (std::size_t r = 0; r < 4; ++r)
        for (std::size_t c = 0; c < 4; ++c)
            to[c * toStride + r] = from[r * fromStride + c];
#else
    const hn::CappedTag<float, 4> d;
    const auto row = [=] (std::size_t r) HWY_ATTR { return hn::LoadU (d, from + r * fromStride); };
    const auto row0 = row (0), row1 = row (1), row2 = row (2), row3 = row (3);
    const auto low02 = hn::InterleaveLower (d, row0, row2), low13 = hn::InterleaveLower (d, row1, row3);
    const auto high02 = hn::InterleaveUpper (d, row0, row2), high13 = hn::InterleaveUpper (d, row1, row3);
    hn::StoreU (hn::InterleaveLower (d, low02, low13), d, to);
    hn::StoreU (hn::InterleaveUpper (d, low02, low13), d, to + toStride);
    hn::StoreU (hn::InterleaveLower (d, high02, high13), d, to + 2 * toStride);
    hn::StoreU (hn::InterleaveUpper (d, high02, high13), d, to + 3 * toStride);
#endif
}

/** One step of a one-pole smoother along the bins. The state waits for a single multiply-add. */
template <class V>
HWY_INLINE V smoothed (V state, V value, V coefficient, V guard)
{
    return hn::MulAdd (state, coefficient, hn::NegMulAdd (value, coefficient, hn::Add (value, guard)));
}

/** What the segments hand on, from where each of them ended. */
void handOn (const float* ends, const float* wholeProducts, bool upwards, Carries& carries)
{
    auto carry = 0.0f;

    for (std::size_t n = 0; n < segmentCount; ++n)
    {
        const auto segment = upwards ? n : segmentCount - 1 - n;
        carries.values[segment] = carry;
        carry = ends[segment] + wholeProducts[segment] * carry;
    }
}

/** Smooths all segments of the channels at once, reading what the last pass left. */
template <std::size_t channels>
void smoothPass (const EnvelopeSegments& segments, const std::array<float*, 2>& rows, bool upwards,
                 const FinishedPass& last)
{
    const hn::CappedTag<float, segmentCount> d;
    constexpr auto lanes = hn::MaxLanes (d), vectors = segmentCount / lanes;
    const auto guard = hn::Set (d, denormalGuard), floor = hn::Set (d, last.floor);
    hn::Vec<decltype (d)> states[channels][vectors], carries[channels][vectors];

    for (std::size_t c = 0; c < channels; ++c)
    {
        for (std::size_t v = 0; v < vectors; ++v)
        {
            states[c][v] = hn::Zero (d);
            carries[c][v] = hn::Load (d, last.carries[c].values.data() + v * lanes);
        }
    }

    for (std::size_t i = 0; i < segments.steps; ++i)
    {
        const auto start = (upwards ? i : segments.steps - 1 - i) * segmentCount;

        for (std::size_t v = 0; v < vectors; ++v)
        {
            const auto at = start + v * lanes;
            const auto coefficient = hn::Load (d, segments.coefficients.data() + at);
            const auto product = hn::Load (d, last.products + at);

            for (std::size_t c = 0; c < channels; ++c)
            {
                const auto value = hn::Max (hn::MulAdd (product, carries[c][v], hn::Load (d, rows[c] + at)), floor);
                states[c][v] = smoothed (states[c][v], value, coefficient, guard);
                hn::Store (states[c][v], d, rows[c] + at);
            }
        }
    }
}

/** The same, and then what the segments hand on to each other. */
template <std::size_t channels>
FinishedPass finishPass (const EnvelopeSegments& segments, const std::array<float*, 2>& rows, bool upwards,
                         const FinishedPass& last, float floorAfter)
{
    smoothPass<channels> (segments, rows, upwards, last);
    const auto lastStep = (segments.steps - 1) * segmentCount;
    FinishedPass pass { upwards ? segments.upwards.data() : segments.downwards.data(), {}, floorAfter };

    for (std::size_t c = 0; c < channels; ++c)
        handOn (rows[c] + (upwards ? lastStep : 0), segments.upwards.data() + lastStep, upwards, pass.carries[c]);

    return pass;
}

/** Smooths rows into their envelopes, backwards and forwards so that they do not lean, twice. */
template <std::size_t channels>
FinishedPass smoothRows (const EnvelopeSegments& segments, const std::array<float*, 2>& rows)
{
    FinishedPass pass { segments.upwards.data(), {}, 0.0f }; // nothing to add

    for (int round = 0; round < envelopeRounds; ++round)
    {
        pass = finishPass<channels> (segments, rows, false, pass, 0.0f);
        pass = finishPass<channels> (segments, rows, true, pass, envelopeFloor); // its state runs on below the floor
    }

    return pass;
}

/** The rows as the last pass leaves them, each bin in its place, and the entry after the last one. */
void layOut (const EnvelopeSegments& segments, const FinishedPass& pass, std::size_t channel, float* row,
             float* envelope)
{
    const auto length = segments.steps * segmentCount;
    const auto& carries = pass.carries[channel];
    const hn::CappedTag<float, segmentCount> d;

    for (std::size_t at = 0; at < length; at += hn::Lanes (d))
    {
        const auto carry = hn::Load (d, carries.values.data() + at % segmentCount);
        const auto value = hn::MulAdd (hn::Load (d, pass.products + at), carry, hn::Load (d, row + at));
        hn::Store (hn::Max (value, hn::Set (d, pass.floor)), d, row + at);
    }

    forEachBlock (segments.steps, [&] (std::size_t bin, std::size_t at) HWY_ATTR
                  { transposeBlock (row + at, segmentCount, envelope + bin, segments.steps); });
    envelope[length] = envelopeSentinel;
}

void WarpEnvelope (const EnvelopeWarp& given)
{
    const auto warp = given; // a copy, which no store into a buffer can change: it stays in registers
    const auto& segments = *warp.segments;

    for (std::size_t c = 0; c < warp.channelCount; ++c)
        forEachBlock (segments.steps, [&] (std::size_t bin, std::size_t at) HWY_ATTR
                      { transposeBlock (warp.magnitudes[c] + bin, segments.steps, warp.rows[c] + at, segmentCount); });

    const auto pass =
        warp.channelCount == 1 ? smoothRows<1> (segments, warp.rows) : smoothRows<2> (segments, warp.rows);

    for (std::size_t c = 0; c < warp.channelCount; ++c)
        layOut (segments, pass, c, warp.rows[c], warp.envelopes[c]);

    const auto top = static_cast<float> (warp.binCount);
    forEachVector (0, warp.bins,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   {
                       const auto position = hn::Mul (countFrom (d, k), hn::Set (d, warp.ratio));
                       const auto inside = hn::Lt (position, hn::Set (d, top));
                       const Interpolator read (d, position, top);

                       for (std::size_t c = 0; c < warp.channelCount; ++c)
                       {
                           const auto moved =
                               hn::IfThenElse (inside, read (warp.envelopes[c]), hn::Set (d, envelopeBeyondTop));
                           const auto flattened =
                               hn::Div (hn::LoadU (d, warp.magnitudes[c] + k), hn::LoadU (d, warp.envelopes[c] + k));
                           hn::StoreU (hn::Mul (flattened, moved), d, warp.shaped[c] + k);
                       }
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
HWY_EXPORT (WarpEnvelope);

void kernels::warpEnvelope (const EnvelopeWarp& warp) noexcept { HWY_DYNAMIC_DISPATCH (WarpEnvelope) (warp); }
} // namespace tarvelline
#endif
