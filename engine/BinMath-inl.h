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
    #include <cstring>

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

/** The mask's bits, that of the lowest lane first. */
template <class D, class M>
HWY_INLINE std::uint64_t bitsOf (D d, M mask)
{
    std::uint8_t bytes[8] {};
    hn::StoreMaskBits (d, mask, bytes);
    return bytes[0] | std::uint64_t { bytes[1] } << 8; // 16 lanes at most
}

/** The mask of elements from k on, out of words that hold a bit an element. They do not reach into the next word. */
template <class D>
HWY_INLINE hn::Mask<D> maskAt (D d, const std::uint64_t* words, std::size_t k)
{
    const auto bits = words[k / 64] >> (k % 64);
    std::uint8_t bytes[8] {};
    std::memcpy (bytes, &bits, sizeof (bits));
    return hn::LoadMaskBits (d, bytes);
}

/** j, j + 1, ... By way of the signed type, for which machines have an instruction. */
template <class D>
HWY_INLINE hn::Vec<D> countFrom (D d, std::size_t j)
{
    return hn::Iota (d, static_cast<float> (static_cast<int> (j)));
}

/** Where output samples from j on are read: j times the ratio recorded for each. */
template <class D>
HWY_INLINE hn::Vec<D> positionOf (D d, std::size_t j, const float* ratios)
{
    return hn::Mul (countFrom (d, j), hn::LoadU (d, ratios + j));
}

/** A sample of a frame and the one after it, for each lane. */
template <class V>
struct Neighbours
{
    V here, next;
};

    #if HWY_TARGET != HWY_SCALAR
/** Two neighbouring vectors as one table. Lanes of `at` are 0 to twice the vector's length, exclusive. */
template <class D, class V = hn::Vec<D>, class VI = hn::Vec<hn::RebindToSigned<D>>>
HWY_INLINE V lookUp (D d, V first, V second, VI at)
{
    const hn::RebindToSigned<D> di;
    const auto length = hn::Set (di, static_cast<int> (hn::Lanes (d)));
    const auto indices = hn::IndicesFromVec (d, hn::And (at, hn::Sub (length, hn::Set (di, 1))));
    return hn::IfThenElse (hn::RebindMask (d, hn::Lt (at, length)), hn::TableLookupLanes (first, indices),
                           hn::TableLookupLanes (second, indices));
}

/** Where all lanes read within two vectors of the first one's sample, as they do at all ratios up to nearly 2, two loads
    and a few permutations do for a gather. */
template <class D, class VI = hn::Vec<hn::RebindToSigned<D>>>
HWY_INLINE Neighbours<hn::Vec<D>> neighbours (D d, const float* frame, VI index)
{
    const hn::RebindToSigned<D> di;
    const auto first = hn::GetLane (index);
    const auto lanes = static_cast<int> (hn::Lanes (d));
    const auto at = hn::Sub (index, hn::Set (di, first)), one = hn::Set (di, 1);

    if (HWY_LIKELY (
            hn::AllTrue (di, hn::And (hn::Gt (at, hn::Set (di, -1)), hn::Lt (at, hn::Set (di, 2 * lanes - 1))))))
    {
        const auto low = hn::LoadU (d, frame + first), high = hn::LoadU (d, frame + first + lanes);
        return { lookUp (d, low, high, at), lookUp (d, low, high, hn::Add (at, one)) };
    }

    // A sample and its neighbour at once: half as many elements to gather.
    const hn::RepartitionToWide<decltype (di)> dPair;
    const hn::Half<decltype (di)> diHalf;
    const auto gather = [&] (auto half) HWY_ATTR
    {
        return hn::BitCast (d, hn::GatherOffset (dPair, reinterpret_cast<const std::int64_t*> (frame),
                                                 hn::ShiftLeft<2> (hn::PromoteTo (dPair, half))));
    };
    const auto low = gather (hn::LowerHalf (diHalf, index)), high = gather (hn::UpperHalf (diHalf, index));
    return { hn::ConcatEven (d, high, low), hn::ConcatOdd (d, high, low) };
}
    #endif

/** The values of `frame` between its samples; positions from `length` on give some value of the frame. Reads the frame up
    to frame[length], and may touch `readAhead` more. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE V interpolated (D d, const float* frame, V position, float length)
{
    const hn::RebindToSigned<D> di;
    const auto last = hn::Set (d, length - 1.0f);
    const auto index = hn::ConvertTo (di, hn::Min (position, last));
    const auto fraction = hn::Sub (position, hn::ConvertTo (d, index));
    Neighbours<V> samples;

    #if HWY_TARGET != HWY_SCALAR
    if constexpr (hn::MaxLanes (d) >= 8)
        samples = neighbours (d, frame, index);
    else
    #endif
        samples = { hn::GatherIndex (d, frame, index), hn::GatherIndex (d, frame + 1, index) };

    return hn::MulAdd (hn::Sub (samples.next, samples.here), fraction, samples.here);
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
