// SPDX-License-Identifier: GPL-3.0-or-later
// Between the bins of the complex transform and the pairs of the real one, and the mirrored runs that this takes. Compiled
// once for each instruction set, inside the source that includes it.
#if defined(TARVELLINE_HARTLEY_SPLIT_INL) == defined(HWY_TARGET_TOGGLE)
    #ifdef TARVELLINE_HARTLEY_SPLIT_INL
        #undef TARVELLINE_HARTLEY_SPLIT_INL
    #else
        #define TARVELLINE_HARTLEY_SPLIT_INL
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
template <class D>
HWY_INLINE hn::Vec<D> loadMirrored (D d, const float* from)
{
    return hn::Reverse (d, hn::LoadU (d, from));
}

template <class D>
HWY_INLINE void storeMirrored (D d, hn::Vec<D> value, float* to)
{
    hn::StoreU (hn::Reverse (d, value), d, to);
}

/** Where the vector starts that holds the mirrors M / 4 - t of the elements from t on, in reverse. */
template <class D>
HWY_INLINE std::size_t mirrorOf (D d, std::size_t t, std::size_t quarter)
{
    return quarter - t - hn::Lanes (d) + 1;
}

/** (cos + sin) / 2 and (cos - sin) / 2 of the angle 2 pi k / N. */
template <class V>
struct Splitter
{
    V sum, difference;

    /** The same half a turn of M further on, where the angle has grown by a right angle. */
    HWY_INLINE Splitter halfOn() const { return { difference, hn::Neg (sum) }; }
};

template <class D>
HWY_INLINE Splitter<hn::Vec<D>> splitterAt (D d, const HartleyTables& tables, std::size_t k)
{
    const auto* rows = tables.split.data();
    return { hn::LoadU (d, rows + k), hn::LoadU (d, rows + static_cast<std::size_t> (tables.length) / 4 + k) };
}

/** Two bins of the real transform: (data[k], data[M + k]) is (p, q), and that of M - k (mirroredP, mirroredQ). */
template <class V>
struct BinPair
{
    V p, q, mirroredP, mirroredQ;
};

/** Complex bins k and M - k into real ones. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE BinPair<V> split (D d, const Complex<V>& z, const Complex<V>& mirrored, const Splitter<V>& w)
{
    const auto half = hn::Set (d, 0.5f);
    const auto evenRe = hn::Add (z.re, mirrored.re), evenIm = hn::Sub (z.im, mirrored.im);
    const auto oddRe = hn::Add (z.im, mirrored.im), oddIm = hn::Sub (mirrored.re, z.re);
    const auto evenP = hn::Mul (half, hn::Sub (evenRe, evenIm)), evenQ = hn::Mul (half, hn::Add (evenRe, evenIm));
    const auto oddP = hn::MulSub (w.sum, oddRe, hn::Mul (w.difference, oddIm));
    const auto oddQ = hn::MulAdd (w.difference, oddRe, hn::Mul (w.sum, oddIm));
    return { hn::Add (evenP, oddP), hn::Add (evenQ, oddQ), hn::Sub (evenQ, oddQ), hn::Sub (evenP, oddP) };
}

/** Undoes split(), times 2, into the complex bins of k (`z`) and of M - k (`mirrored`). */
template <class D, class V = hn::Vec<D>>
HWY_INLINE void join (D d, const BinPair<V>& bins, const Splitter<V>& w, Complex<V>& z, Complex<V>& mirrored)
{
    const auto half = hn::Set (d, 0.5f);
    const auto a = hn::Add (bins.p, bins.mirroredQ), b = hn::Add (bins.q, bins.mirroredP);
    const auto c = hn::Sub (bins.p, bins.mirroredQ), e = hn::Sub (bins.q, bins.mirroredP);
    const auto evenRe = hn::Mul (half, hn::Add (a, b)), evenIm = hn::Mul (half, hn::Sub (b, a));
    const auto oddRe = hn::MulSub (w.difference, c, hn::Mul (w.sum, e));
    const auto oddIm = hn::MulAdd (w.sum, c, hn::Mul (w.difference, e));
    z = { hn::Add (evenRe, oddRe), hn::Add (evenIm, oddIm) };
    mirrored = { hn::Sub (evenRe, oddRe), hn::Sub (oddIm, evenIm) };
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
