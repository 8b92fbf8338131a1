// SPDX-License-Identifier: GPL-3.0-or-later
// N real values as M = N / 2 complex ones: even samples real, odd ones imaginary. The passes that touch the outside also
// part the complex bins into the pairs of the real transform: k and M - k need each other, and so do, of the four elements
// t + r M / 4 of a radix-4 butterfly, those of t and of its mirror M / 4 - t.
#include "engine/HartleyKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/HartleyKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/HartleyPasses-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
/** All passes but the first and the last, from `from`, by way of `other`. Returns which of them holds the result. */
inline SplitComplex middlePasses (const HartleyTables& tables, SplitComplex from, SplitComplex other)
{
    const auto half = static_cast<std::size_t> (tables.length) / 2;
    const auto* turns = tables.middle.data();
    std::size_t stride = 16;
    secondPass (tables, from, other);

    for (; half / stride > 8; stride *= 4)
    {
        std::swap (from, other);
        turns = widePass (turns, half, stride, from, other);
    }

    if (half / stride == 8)
    {
        std::swap (from, other);
        radix2Pass (turns, half, stride, from, other);
    }

    return other;
}

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

/** (cos + sin) / 2 and (cos - sin) / 2 of the angle 2 pi k / N. */
template <class V>
struct Splitter
{
    V sum, difference;

    /** The same half a turn of M further on, where the angle has grown by a right angle. */
    HWY_INLINE Splitter halfOn() const { return { difference, hn::Neg (sum) }; }
};

/** Two bins of the real transform: (data[k], data[M + k]) is (p, q), and that of M - k (mirroredP, mirroredQ). */
template <class V>
struct BinPair
{
    V p, q, mirroredP, mirroredQ;
};

/** Complex bins k and M - k into real ones. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE BinPair<V> parted (D d, const Complex<V>& z, const Complex<V>& mirrored, const Splitter<V>& w)
{
    const auto half = hn::Set (d, 0.5f);
    const auto evenRe = hn::Add (z.re, mirrored.re), evenIm = hn::Sub (z.im, mirrored.im);
    const auto oddRe = hn::Add (z.im, mirrored.im), oddIm = hn::Sub (mirrored.re, z.re);
    const auto evenP = hn::Mul (half, hn::Sub (evenRe, evenIm)), evenQ = hn::Mul (half, hn::Add (evenRe, evenIm));
    const auto oddP = hn::MulSub (w.sum, oddRe, hn::Mul (w.difference, oddIm));
    const auto oddQ = hn::MulAdd (w.difference, oddRe, hn::Mul (w.sum, oddIm));
    return { hn::Add (evenP, oddP), hn::Add (evenQ, oddQ), hn::Sub (evenQ, oddQ), hn::Sub (evenP, oddP) };
}

/** Undoes parted(), times 2, into the complex bins of k (`z`) and of M - k (`mirrored`). */
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

void Forward (const HartleyTables& tables, float* data, float* scratch)
{
    const hn::CappedTag<float, 16> d;
    using V = hn::Vec<decltype (d)>;
    const auto lanes = hn::Lanes (d);
    const auto half = static_cast<std::size_t> (tables.length) / 2, quarter = half / 4;
    const SplitComplex outside { data, data + half }, inside { scratch, scratch + half };

    for (std::size_t t = 0; t < quarter; t += lanes)
    {
        Complex<V> rows[4];

        for (std::size_t r = 0; r < 4; ++r)
            hn::LoadInterleaved2 (d, data + 2 * (t + r * quarter), rows[r].re, rows[r].im);

        FourPoints points (rows[0], rows[1], rows[2], rows[3]);
        turnByElement (d, points, tables.first.data(), quarter, t);
        storeFirst (d, points, inside, t);
    }

    const auto from = middlePasses (tables, inside, outside);
    const auto* split = tables.split.data();
    const auto pass = [&] (auto tag, std::size_t t) HWY_ATTR
    {
        const auto mirror = quarter - t - hn::Lanes (tag) + 1;
        const FourPoints points (load (tag, from, t), load (tag, from, t + quarter), load (tag, from, t + 2 * quarter),
                                 load (tag, from, t + 3 * quarter));
        const auto mirroredRow = [&] (std::size_t r) HWY_ATTR
        {
            return Complex<hn::Vec<decltype (tag)>> { loadMirrored (tag, from.re + mirror + r * quarter),
                                                      loadMirrored (tag, from.im + mirror + r * quarter) };
        };
        const FourPoints mirrored (mirroredRow (0), mirroredRow (1), mirroredRow (2), mirroredRow (3));
        const auto splitter = [&] (std::size_t k) HWY_ATTR {
            return Splitter<hn::Vec<decltype (tag)>> { hn::LoadU (tag, split + k),
                                                       hn::LoadU (tag, split + half / 2 + k) };
        };
        const auto write = [&] (std::size_t r, const auto& bins) HWY_ATTR
        {
            hn::StoreU (bins.p, tag, data + t + r * quarter);
            hn::StoreU (bins.q, tag, data + half + t + r * quarter);
            storeMirrored (tag, bins.mirroredP, data + mirror + (3 - r) * quarter);
            storeMirrored (tag, bins.mirroredQ, data + half + mirror + (3 - r) * quarter);
        };
        const auto w0 = splitter (t), w1 = splitter (t + quarter);
        write (0, parted (tag, points.y0, mirrored.y3, w0));
        write (1, parted (tag, points.y1, mirrored.y2, w1));
        write (2, parted (tag, points.y2, mirrored.y1, w0.halfOn()));
        write (3, parted (tag, points.y3, mirrored.y0, w1.halfOn()));
    };

    // Element 0 is its own mirror, but for its second and fourth result, which are each other's.
    {
        const hn::CappedTag<float, 1> one;
        const FourPoints points (load (one, from, 0), load (one, from, quarter), load (one, from, 2 * quarter),
                                 load (one, from, 3 * quarter));
        const auto bins = parted (one, points.y1, points.y3,
                                  { hn::LoadU (one, split + quarter), hn::LoadU (one, split + half / 2 + quarter) });
        hn::StoreU (hn::Add (points.y0.re, points.y0.im), one, data);
        hn::StoreU (hn::Sub (points.y0.re, points.y0.im), one, data + half);
        hn::StoreU (hn::Add (points.y2.re, points.y2.im), one, data + half / 2);
        hn::StoreU (hn::Sub (points.y2.re, points.y2.im), one, data + half + half / 2);
        hn::StoreU (bins.p, one, data + quarter);
        hn::StoreU (bins.q, one, data + half + quarter);
        hn::StoreU (bins.mirroredP, one, data + 3 * quarter);
        hn::StoreU (bins.mirroredQ, one, data + half + 3 * quarter);
    }

    for (std::size_t t = 1; t <= quarter / 2; t += lanes)
        pass (d, t);
}

void Inverse (const HartleyTables& tables, float* data, float* scratch)
{
    const hn::CappedTag<float, 16> d;
    using V = hn::Vec<decltype (d)>;
    const auto lanes = hn::Lanes (d);
    const auto length = static_cast<std::size_t> (tables.length), half = length / 2, quarter = half / 4;
    const auto* split = tables.split.data();

    // Real and imaginary parts change places: the passes, which turn forwards, then turn backwards.
    const SplitComplex inside { scratch + half, scratch };

    {
        const hn::CappedTag<float, 1> one;
        using V1 = hn::Vec<decltype (one)>;
        const auto at = [&] (std::size_t k) HWY_ATTR { return hn::LoadU (one, data + k); };
        const auto dc = at (0), nyquist = at (half), p = at (half / 2), q = at (half + half / 2);
        Complex<V1> y1, y3;
        join (one, BinPair<V1> { at (quarter), at (half + quarter), at (3 * quarter), at (half + 3 * quarter) },
              { hn::LoadU (one, split + quarter), hn::LoadU (one, split + half / 2 + quarter) }, y1, y3);
        const auto swapped = [] (const Complex<V1>& z) HWY_ATTR { return Complex<V1> { z.im, z.re }; };
        storeFirst (one,
                    FourPoints (swapped ({ hn::Add (dc, nyquist), hn::Sub (dc, nyquist) }), swapped (y1),
                                swapped ({ hn::Add (p, q), hn::Sub (p, q) }), swapped (y3)),
                    inside, 0);
    }

    for (std::size_t t = 1; t <= quarter / 2; t += lanes)
    {
        const auto mirror = quarter - t - lanes + 1;
        Complex<V> rows[4], mirrored[4];
        const auto joinRow = [&] (std::size_t r, const Splitter<V>& w) HWY_ATTR
        {
            const auto* straight = data + t + r * quarter;
            const auto* back = data + mirror + (3 - r) * quarter;
            join (d,
                  BinPair<V> { hn::LoadU (d, straight), hn::LoadU (d, straight + half), loadMirrored (d, back),
                               loadMirrored (d, back + half) },
                  w, rows[r], mirrored[3 - r]);
        };
        const auto splitter = [&] (std::size_t k) HWY_ATTR {
            return Splitter<V> { hn::LoadU (d, split + k), hn::LoadU (d, split + half / 2 + k) };
        };
        const auto w0 = splitter (t), w1 = splitter (t + quarter);
        joinRow (0, w0);
        joinRow (1, w1);
        joinRow (2, w0.halfOn());
        joinRow (3, w1.halfOn());
        const auto pass = [&] (const Complex<V>* z, std::size_t at) HWY_ATTR
        {
            const auto swapped = [z] (std::size_t r) HWY_ATTR { return Complex<V> { z[r].im, z[r].re }; };
            FourPoints points (swapped (0), swapped (1), swapped (2), swapped (3));
            turnByElement (d, points, tables.first.data(), quarter, at);
            storeFirst (d, points, inside, at);
        };
        pass (rows, t);

        for (auto& z : mirrored)
            z = { hn::Reverse (d, z.re), hn::Reverse (d, z.im) };

        pass (mirrored, mirror);
    }

    const auto from = middlePasses (tables, inside, { inside.re + length, inside.im + length });

    for (std::size_t t = 0; t < quarter; t += lanes)
    {
        const FourPoints points (load (d, from, t), load (d, from, t + quarter), load (d, from, t + 2 * quarter),
                                 load (d, from, t + 3 * quarter));
        hn::StoreInterleaved2 (points.y0.im, points.y0.re, d, data + 2 * t);
        hn::StoreInterleaved2 (points.y1.im, points.y1.re, d, data + 2 * (t + quarter));
        hn::StoreInterleaved2 (points.y2.im, points.y2.re, d, data + 2 * (t + 2 * quarter));
        hn::StoreInterleaved2 (points.y3.im, points.y3.re, d, data + 2 * (t + 3 * quarter));
    }
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvelline
{
HWY_EXPORT (Forward);
HWY_EXPORT (Inverse);

void chooseInstructionSet() { hwy::GetChosenTarget().Update (hwy::SupportedTargets()); }

void hartleyForward (const HartleyTables& tables, float* data, float* scratch) noexcept
{
    HWY_DYNAMIC_DISPATCH (Forward) (tables, data, scratch);
}

void hartleyInverse (const HartleyTables& tables, float* data, float* scratch) noexcept
{
    HWY_DYNAMIC_DISPATCH (Inverse) (tables, data, scratch);
}
} // namespace tarvelline
#endif
