// SPDX-License-Identifier: GPL-3.0-or-later
// The radix-4 passes of a complex transform in Stockham's order: each pass reads four runs and writes its results where
// the next one expects them, so that nothing is ever bit-reversed. Compiled once for each instruction set.
#if defined(TARVELLINE_HARTLEY_PASSES_INL) == defined(HWY_TARGET_TOGGLE)
    #ifdef TARVELLINE_HARTLEY_PASSES_INL
        #undef TARVELLINE_HARTLEY_PASSES_INL
    #else
        #define TARVELLINE_HARTLEY_PASSES_INL
    #endif

    #include "engine/Vectors-inl.h"
    #include "engine/transform/HartleyTables.h"

    #include <hwy/highway.h>

    #include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
/** The four-point transform of a, b, c, d: the butterfly of a radix-4 pass. Its results are then turned by the powers of a
    root of unity (the twiddle factors). */
template <class V>
struct FourPoints
{
    HWY_INLINE FourPoints (const Complex<V>& a, const Complex<V>& b, const Complex<V>& c, const Complex<V>& d)
    {
        const auto ac = a + c, bd = b + d, acDifference = a - c, bdDifference = b - d;
        y0 = ac + bd;
        y1 = { hn::Add (acDifference.re, bdDifference.im), hn::Sub (acDifference.im, bdDifference.re) };
        y2 = ac - bd;
        y3 = { hn::Sub (acDifference.re, bdDifference.im), hn::Add (acDifference.im, bdDifference.re) };
    }

    HWY_INLINE void turn (const Complex<V>& w1, const Complex<V>& w2, const Complex<V>& w3)
    {
        y1 = y1 * w1;
        y2 = y2 * w2;
        y3 = y3 * w3;
    }

    Complex<V> y0, y1, y2, y3;
};

/** The elements from `t` on of the four rows, a quarter of the values apart. */
template <class D>
HWY_INLINE FourPoints<hn::Vec<D>> loadRows (D d, SplitComplex from, std::size_t t, std::size_t quarter)
{
    return { load (d, from, t), load (d, from, t + quarter), load (d, from, t + 2 * quarter),
             load (d, from, t + 3 * quarter) };
}

/** The turns of the elements from `t` on, out of a table of six rows of `count`. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE void turnByElement (D d, FourPoints<V>& points, const float* rows, std::size_t count, std::size_t t)
{
    const auto row = [&] (std::size_t r) HWY_ATTR { return hn::LoadU (d, rows + r * count + t); };
    points.turn ({ row (0), row (1) }, { row (2), row (3) }, { row (4), row (5) });
}

/** Stride 1: the results of one element stand side by side. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeFirst (D d, const FourPoints<V>& points, SplitComplex to, std::size_t t)
{
    hn::StoreInterleaved4 (points.y0.re, points.y1.re, points.y2.re, points.y3.re, d, to.re + 4 * t);
    hn::StoreInterleaved4 (points.y0.im, points.y1.im, points.y2.im, points.y3.im, d, to.im + 4 * t);
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE void storeByFour (D d, V y0, V y1, V y2, V y3, float* to, std::size_t t)
{
    if constexpr (hn::MaxLanes (d) <= 4)
    {
        auto* run = to + 4 * (t & ~std::size_t { 3 }) + (t & 3);
        hn::StoreU (y0, d, run);
        hn::StoreU (y1, d, run + 4);
        hn::StoreU (y2, d, run + 8);
        hn::StoreU (y3, d, run + 12);
    }
    #if HWY_TARGET != HWY_SCALAR
    else
    {
        static_assert (hn::MaxLanes (d) == 8);
        auto* run = to + 4 * t;
        hn::StoreU (hn::ConcatLowerLower (d, y1, y0), d, run);
        hn::StoreU (hn::ConcatLowerLower (d, y3, y2), d, run + 8);
        hn::StoreU (hn::ConcatUpperUpper (d, y1, y0), d, run + 16);
        hn::StoreU (hn::ConcatUpperUpper (d, y3, y2), d, run + 24);
    }
    #endif
}

/** The pass at stride 4. */
inline HWY_NOINLINE void secondPass (const HartleyTables& tables, SplitComplex from, SplitComplex to)
{
    const hn::CappedTag<float, 8> d;
    const auto quarter = static_cast<std::size_t> (tables.length) / 8;

    for (std::size_t t = 0; t < quarter; t += hn::Lanes (d))
    {
        auto points = loadRows (d, from, t, quarter);
        turnByElement (d, points, tables.second.data(), quarter, t);
        storeByFour (d, points.y0.re, points.y1.re, points.y2.re, points.y3.re, to.re, t);
        storeByFour (d, points.y0.im, points.y1.im, points.y2.im, points.y3.im, to.im, t);
    }
}

/** A run of `stride` elements, 16 or more, which share their turns: from four rows `distance` apart into four side by side. */
HWY_INLINE void wideRun (const float* turns, SplitComplex from, std::size_t distance, SplitComplex to,
                         std::size_t stride)
{
    const hn::CappedTag<float, 16> d;
    const auto turn = [&] (std::size_t i) HWY_ATTR {
        return Complex<decltype (hn::Zero (d))> { hn::Set (d, turns[i]), hn::Set (d, turns[i + 1]) };
    };
    const auto w1 = turn (0), w2 = turn (2), w3 = turn (4);

    for (std::size_t q = 0; q < stride; q += hn::Lanes (d))
    {
        auto points = loadRows (d, from, q, distance);
        points.turn (w1, w2, w3);
        store (d, points.y0, to, q);
        store (d, points.y1, to, q + stride);
        store (d, points.y2, to, q + 2 * stride);
        store (d, points.y3, to, q + 3 * stride);
    }
}

inline SplitComplex operator+ (SplitComplex data, std::size_t elements)
{
    return { data.re + elements, data.im + elements };
}

/** A pass at a stride of 16 or more. Returns the next pass's turns. */
inline HWY_NOINLINE const float* widePass (const float* turns, std::size_t half, std::size_t stride, SplitComplex from,
                                           SplitComplex to)
{
    for (std::size_t start = 0; start < half / 4; start += stride, turns += 6)
        wideRun (turns, from + start, half / 4, to + 4 * start, stride);

    return turns;
}

/** The passes at strides 16 and 64 in one: four runs of the first make one of the second, and stay in the nearest cache. */
inline HWY_NOINLINE const float* twoWidePasses (const float* turns, std::size_t half, SplitComplex from,
                                                SplitComplex to)
{
    constexpr std::size_t stride = 16, next = 4 * stride;
    const auto runs = half / 4 / next;
    const auto* nextTurns = turns + 6 * (next / stride) * runs;
    alignas (64) float between[8 * next];
    const SplitComplex inside { between, between + 4 * next };

    for (std::size_t run = 0; run < runs; ++run, nextTurns += 6)
    {
        for (std::size_t r = 0; r < 4; ++r)
        {
            const auto first = run + r * runs;
            wideRun (turns + 6 * first, from + first * stride, half / 4, inside + r * next, stride);
        }

        wideRun (nextTurns, inside, next, to + 4 * run * next, next);
    }

    return nextTurns;
}

/** A pass of radix 2, where the number of values is not a power of four. */
inline HWY_NOINLINE void radix2Pass (const float* turns, std::size_t half, std::size_t stride, SplitComplex from,
                                     SplitComplex to)
{
    const hn::CappedTag<float, 16> d;

    for (std::size_t start = 0; start < half / 2; start += stride, turns += 2)
    {
        const Complex<decltype (hn::Zero (d))> w { hn::Set (d, turns[0]), hn::Set (d, turns[1]) };

        for (std::size_t q = 0; q < stride; q += hn::Lanes (d))
        {
            const auto a = load (d, from, start + q), b = load (d, from, start + q + half / 2);
            store (d, a + b, to, 2 * start + q);
            store (d, (a - b) * w, to, 2 * start + q + stride);
        }
    }
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
