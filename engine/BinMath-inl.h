// SPDX-License-Identifier: GPL-3.0-or-later
// Bins, phasors and interpolated reads in vectors. Compiled once for each instruction set, inside the source that includes it.
#if defined(TARVELLINE_BIN_MATH_INL) == defined(HWY_TARGET_TOGGLE)
    #ifdef TARVELLINE_BIN_MATH_INL
        #undef TARVELLINE_BIN_MATH_INL
    #else
        #define TARVELLINE_BIN_MATH_INL
    #endif

    #include "engine/Spectrum.h"
    #include "engine/Vectors-inl.h"

    #include <hwy/highway.h>

    #include <cstdint>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
inline SplitComplex pairs (float* data, std::size_t binCount) { return { data, data + binCount }; }

template <class V>
HWY_INLINE Complex<V> conjugate (const Complex<V>& z)
{
    return { z.re, hn::Neg (z.im) };
}

template <class M, class V>
HWY_INLINE Complex<V> choose (M mask, const Complex<V>& yes, const Complex<V>& no)
{
    return { hn::IfThenElse (mask, yes.re, no.re), hn::IfThenElse (mask, yes.im, no.im) };
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE V magnitudeOf (D d, const Complex<V>& z)
{
    return hn::Sqrt (hn::MulAdd (z.re, z.re, hn::MulAdd (z.im, z.im, hn::Set (d, denormalGuard))));
}

/** Brings phasors back to length 1 where the mask says, from which rounding moves a long product. Rarely any is due. */
template <class D, class M, class V = hn::Vec<D>>
HWY_INLINE Complex<V> normalisedWhere (D d, M due, const Complex<V>& z)
{
    if (HWY_LIKELY (hn::AllFalse (d, due)))
        return z;

    const auto scale = hn::Div (hn::Set (d, 1.0f), hn::Add (magnitudeOf (d, z), hn::Set (d, denormalGuard)));
    return choose (due, Complex<V> { hn::Mul (z.re, scale), hn::Mul (z.im, scale) }, z);
}

/** Where output samples from j on are read: j times the ratio recorded for each. */
template <class D>
HWY_INLINE hn::Vec<D> positionOf (D d, std::size_t j, const float* ratios)
{
    return hn::Mul (hn::Iota (d, static_cast<float> (j)), hn::LoadU (d, ratios + j));
}

/** The values of `frame` between its samples; positions from `length` on give some value of the frame. Reads frame[length]. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE V interpolated (D d, const float* frame, V position, std::size_t length)
{
    const hn::RebindToSigned<D> di;
    const auto last = hn::Set (d, static_cast<float> (length - 1));
    const auto index = hn::ConvertTo (di, hn::Min (position, last));
    const auto fraction = hn::Sub (position, hn::ConvertTo (d, index));
    V here, next;

    #if HWY_TARGET != HWY_SCALAR
    if constexpr (hn::MaxLanes (d) >= 8)
    {
        // A sample and its neighbour at once: half as many elements to gather.
        const hn::RepartitionToWide<decltype (di)> dPair;
        const hn::Half<decltype (di)> diHalf;
        const auto gather = [&] (auto half) HWY_ATTR
        {
            return hn::BitCast (d, hn::GatherOffset (dPair, reinterpret_cast<const std::int64_t*> (frame),
                                                     hn::ShiftLeft<2> (hn::PromoteTo (dPair, half))));
        };
        const auto low = gather (hn::LowerHalf (diHalf, index)), high = gather (hn::UpperHalf (diHalf, index));
        here = hn::ConcatEven (d, high, low);
        next = hn::ConcatOdd (d, high, low);
    }
    else
    #endif
    {
        here = hn::GatherIndex (d, frame, index);
        next = hn::GatherIndex (d, frame + 1, index);
    }

    return hn::MulAdd (hn::Sub (next, here), fraction, here);
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
