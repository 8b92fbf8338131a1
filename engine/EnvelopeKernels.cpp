// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/AnalysisKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/EnvelopeKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/BinMath-inl.h"

#include <hwy/highway.h>

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
constexpr int envelopePasses = 2;

/** One step of a one-pole smoother along the bins. The state waits for a single multiply-add. */
template <class V>
HWY_INLINE V smoothed (V state, V value, V coefficient, V guard)
{
    return hn::MulAdd (state, coefficient, hn::NegMulAdd (value, coefficient, hn::Add (value, guard)));
}

/** Smooths two interleaved rows into their envelopes, backwards and forwards so that they do not lean, twice. The rows
    stand in one vector: each step waits for the one before, so that only what is side by side runs at once. */
void smoothIntoEnvelopes (float* rows, const float* coefficients, std::size_t count)
{
    const hn::CappedTag<float, 2> d;
    const auto guard = hn::Set (d, denormalGuard), floor = hn::Set (d, envelopeFloor);

    for (std::size_t row = 0; row < 2; row += hn::Lanes (d))
    {
        for (int pass = 0; pass < envelopePasses; ++pass)
        {
            auto state = hn::Zero (d);

            for (auto k = count; k-- > 0;)
            {
                auto* value = rows + 2 * k + row;
                state = smoothed (state, hn::LoadU (d, value), hn::Set (d, coefficients[k]), guard);
                hn::StoreU (state, d, value);
            }

            state = hn::Zero (d);

            for (std::size_t k = 0; k < count; ++k)
            {
                auto* value = rows + 2 * k + row;
                state = smoothed (state, hn::LoadU (d, value), hn::Set (d, coefficients[k]), guard);
                hn::StoreU (hn::Max (state, floor), d, value); // the state itself runs on below the floor
            }
        }
    }
}

void WarpEnvelope (const EnvelopeWarp& given)
{
    const auto warp = given; // a copy, which no store into a buffer can change: it stays in registers
    const auto count = warp.binCount;
    const auto top = static_cast<float> (count);
    const auto last = warp.channelCount - 1; // a single channel takes both rows
    auto* rows = warp.envelopes;

    forEachVector (0, count,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   {
                       hn::StoreInterleaved2 (hn::LoadU (d, warp.magnitudes[0] + k),
                                              hn::LoadU (d, warp.magnitudes[last] + k), d, rows + 2 * k);
                   });

    smoothIntoEnvelopes (rows, warp.coefficients, count);
    rows[2 * count] = rows[2 * count + 1] = envelopeSentinel;

    forEachVector (0, count,
                   [=] (auto d, std::size_t k) HWY_ATTR
                   {
                       const hn::RebindToSigned<decltype (d)> di;
                       const auto position = hn::Mul (countFrom (d, k), hn::Set (d, warp.ratio));
                       const auto inside = hn::Lt (position, hn::Set (d, top));
                       const auto index = hn::ConvertTo (di, hn::Min (position, hn::Set (d, top - 1.0f)));
                       const auto fraction = hn::Sub (position, hn::ConvertTo (d, index));
                       const auto entry = hn::ShiftLeft<1> (index);
                       hn::Vec<decltype (d)> envelopes[2];
                       hn::LoadInterleaved2 (d, rows + 2 * k, envelopes[0], envelopes[1]);

                       for (std::size_t c = 0; c < warp.channelCount; ++c)
                       {
                           const auto here = hn::GatherIndex (d, rows + c, entry);
                           const auto next = hn::GatherIndex (d, rows + c + 2, entry);
                           const auto moved = hn::IfThenElse (inside, hn::MulAdd (hn::Sub (next, here), fraction, here),
                                                              hn::Set (d, envelopeBeyondTop));
                           const auto flattened = hn::Div (hn::LoadU (d, warp.magnitudes[c] + k), envelopes[c]);
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
