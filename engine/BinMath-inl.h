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

/** Reads frames between their samples, all at the same positions: where from, and how much of the next sample, is found
    once. Positions from `length` on give some value of the frame. A frame is read up to frame[length]; `readAhead` more may
    be touched. This one gathers its samples one by one. */
template <class D, bool permutes = (hn::MaxLanes (D()) >= 8)>
class Interpolator
{
    using V = hn::Vec<D>;
    using DI = hn::RebindToSigned<D>;

public:
    HWY_INLINE Interpolator (D, V position, float length)
        : index (hn::ConvertTo (DI(), hn::Min (position, hn::Set (D(), length - 1.0f)))),
          fraction (hn::Sub (position, hn::ConvertTo (D(), index)))
    {
    }

    HWY_INLINE V operator() (const float* frame) const
    {
    #if HWY_TARGET != HWY_SCALAR
        if constexpr (hn::MaxLanes (D()) == 4)
            return betweenNeighbours (frame);
    #endif

        return between (truncated (frame), hn::GatherIndex (D(), frame + 1, index));
    }

    /** The samples at or below the positions. */
    HWY_INLINE V truncated (const float* frame) const { return hn::GatherIndex (D(), frame, index); }

protected:
    HWY_INLINE V between (V here, V next) const { return hn::MulAdd (hn::Sub (next, here), fraction, here); }

    hn::Vec<DI> index;
    V fraction;

    #if HWY_TARGET != HWY_SCALAR
private:
    /** A sample and its neighbour in one load: half as many. */
    HWY_INLINE V betweenNeighbours (const float* frame) const
    {
        const D d;
        const hn::Half<D> dPair;
        alignas (16) std::int32_t at[4];
        hn::Store (index, DI(), at);
        const auto pair = [&] (int lane) HWY_ATTR { return hn::LoadU (dPair, frame + at[lane]); };
        const auto low = hn::Combine (d, pair (1), pair (0)), high = hn::Combine (d, pair (3), pair (2));
        return between (hn::ConcatEven (d, high, low), hn::ConcatOdd (d, high, low));
    }
    #endif
};

    #if HWY_TARGET != HWY_SCALAR
/** Where all lanes read within two vectors of the first one's sample, as they do at all ratios up to 2, a few loads
    and permutations do for a gather. */
template <class D>
class Interpolator<D, true> : public Interpolator<D, false>
{
    using V = hn::Vec<D>;
    using DI = hn::RebindToSigned<D>;
    static constexpr auto lanes = static_cast<int> (hn::MaxLanes (D()));

public:
    HWY_INLINE Interpolator (D d, V position, float length)
        : Interpolator<D, false> (d, position, length), first (hn::GetLane (this->index)),
          distance (hn::Sub (this->index, hn::Set (DI(), first))),
          second (hn::Gt (distance, hn::Set (DI(), lanes - 1))),
          lane (hn::IndicesFromVec (d, hn::And (distance, hn::Set (DI(), lanes - 1)))),
          isNear (hn::AllTrue (
              DI(), hn::And (hn::Gt (distance, hn::Set (DI(), -1)), hn::Lt (distance, hn::Set (DI(), 2 * lanes)))))
    {
    }

    HWY_INLINE V operator() (const float* frame) const
    {
        return HWY_LIKELY (isNear) ? this->between (lookUp (frame + first), lookUp (frame + first + 1))
                                   : gather (frame);
    }

    HWY_INLINE V truncated (const float* frame) const
    {
        return HWY_LIKELY (isNear) ? lookUp (frame + first) : Interpolator<D, false>::truncated (frame);
    }

private:
    HWY_INLINE V lookUp (const float* from) const
    {
        const D d;
        return hn::IfThenElse (hn::RebindMask (d, second), hn::TableLookupLanes (hn::LoadU (d, from + lanes), lane),
                               hn::TableLookupLanes (hn::LoadU (d, from), lane));
    }

    /** A sample and its neighbour at once: half as many elements to gather. */
    HWY_INLINE V gather (const float* frame) const
    {
        const D d;
        const hn::RepartitionToWide<DI> dPair;
        const hn::Half<DI> diHalf;
        const auto pairsOf = [=] (auto half) HWY_ATTR
        {
            return hn::BitCast (d, hn::GatherOffset (dPair, reinterpret_cast<const std::int64_t*> (frame),
                                                     hn::ShiftLeft<2> (hn::PromoteTo (dPair, half))));
        };
        const auto low = pairsOf (hn::LowerHalf (diHalf, this->index)),
                   high = pairsOf (hn::UpperHalf (diHalf, this->index));
        return this->between (hn::ConcatEven (d, high, low), hn::ConcatOdd (d, high, low));
    }

    int first;
    hn::Vec<DI> distance; // from the first lane's sample
    hn::Mask<DI> second;  // lanes that read in the second vector from there
    decltype (hn::IndicesFromVec (D(), hn::Vec<DI>())) lane;
    bool isNear;
};
    #endif

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
