// SPDX-License-Identifier: GPL-3.0-or-later
// N real values as M = N / 2 complex ones: even samples real, odd ones imaginary. The passes that touch the outside also
// split the complex bins into the pairs of the real transform: k and M - k need each other, and so do, of the four elements
// t + r M / 4 of a radix-4 butterfly, those of t and of its mirror M / 4 - t.
#include "engine/transform/HartleyKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/transform/HartleyKernels.cpp"
#include <hwy/foreach_target.h>

#include "engine/transform/HartleyFewBins-inl.h"
#include "engine/transform/HartleyPasses-inl.h"
#include "engine/transform/HartleySplit-inl.h"

#include <hwy/highway.h>

#include <algorithm>
#include <utility>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
/** The passes from stride 16 on but for the last, from `from`, by way of `other`. Returns which of them holds the result. */
inline SplitComplex widePasses (const float* turns, std::size_t half, SplitComplex from, SplitComplex other)
{
    std::size_t stride = 16;

    // The widest vectors, which hold a run of 16 each, gain nothing by it where the nearest cache holds the whole transform.
    if (half > 1024 || hn::MaxLanes (hn::CappedTag<float, 16>()) < 16)
    {
        turns = twoWidePasses (turns, half, from, other);
        std::swap (from, other);
        stride = 256;
    }

    for (; half / stride > 8; stride *= 4)
    {
        turns = widePass (turns, half, stride, from, other);
        std::swap (from, other);
    }

    if (half / stride == 8)
    {
        radix2Pass (turns, half, stride, from, other);
        std::swap (from, other);
    }

    return from;
}

/** Takes the samples from 2 t on as complex ones. */
struct PlainSource
{
    template <class D, class V = hn::Vec<D>>
    HWY_INLINE Complex<V> operator() (D d, std::size_t t) const
    {
        Complex<V> z;
        hn::LoadInterleaved2 (d, samples + 2 * t, z.re, z.im);
        return z;
    }

    const float* samples;
};

/** The same of the product with a window, and with the offset. */
struct WindowedSource
{
    template <class D, class V = hn::Vec<D>>
    HWY_INLINE Complex<V> operator() (D d, std::size_t t) const
    {
        const auto offset = hn::Set (d, input.offset);
        const auto samples = PlainSource { input.samples }(d, t), window = PlainSource { input.window }(d, t);
        return { hn::Sub (hn::Mul (samples.re, window.re), offset), hn::Add (hn::Mul (samples.im, window.im), offset) };
    }

    WindowedInput input;
};

/** The first pass of the way there: even samples real, odd ones imaginary. */
template <class Source>
HWY_NOINLINE void deinterleavingPass (const HartleyTables& tables, const Source& source, SplitComplex to)
{
    const hn::CappedTag<float, 16> d;
    const auto quarter = static_cast<std::size_t> (tables.length) / 8;

    for (std::size_t t = 0; t < quarter; t += hn::Lanes (d))
    {
        FourPoints points (source (d, t), source (d, t + quarter), source (d, t + 2 * quarter),
                           source (d, t + 3 * quarter));
        turnByElement (d, points, tables.first.data(), quarter, t);
        storeFirst (d, points, to, t);
    }
}

/** Element 0 of the last pass: its own mirror, but for its second and fourth result, which are each other's. */
inline void splitFirstElement (const HartleyTables& tables, SplitComplex from, float* data)
{
    const hn::CappedTag<float, 1> d;
    const auto half = static_cast<std::size_t> (tables.length) / 2, quarter = half / 4;
    const auto points = loadRows (d, from, 0, quarter);
    const auto storePair = [&] (std::size_t k, auto p, auto q) HWY_ATTR
    {
        hn::StoreU (p, d, data + k);
        hn::StoreU (q, d, data + half + k);
    };
    const auto bins = split (d, points.y1, points.y3, splitterAt (d, tables, quarter));
    storePair (0, hn::Add (points.y0.re, points.y0.im), hn::Sub (points.y0.re, points.y0.im));
    storePair (quarter, bins.p, bins.q);
    storePair (2 * quarter, hn::Add (points.y2.re, points.y2.im), hn::Sub (points.y2.re, points.y2.im));
    storePair (3 * quarter, bins.mirroredP, bins.mirroredQ);
}

/** The last pass of the way there, but for element 0. */
inline void splittingPass (const HartleyTables& tables, SplitComplex from, float* data)
{
    const hn::CappedTag<float, 16> d;
    using V = hn::Vec<decltype (d)>;
    const auto half = static_cast<std::size_t> (tables.length) / 2, quarter = half / 4;

    for (std::size_t t = 1; t <= quarter / 2; t += hn::Lanes (d))
    {
        const auto mirror = mirrorOf (d, t, quarter);
        const auto mirroredRow = [&] (std::size_t r) HWY_ATTR
        {
            const auto at = mirror + r * quarter;
            return Complex<V> { loadMirrored (d, from.re + at), loadMirrored (d, from.im + at) };
        };
        const auto write = [&] (std::size_t r, const BinPair<V>& bins) HWY_ATTR
        {
            hn::StoreU (bins.p, d, data + t + r * quarter);
            hn::StoreU (bins.q, d, data + half + t + r * quarter);
            storeMirrored (d, bins.mirroredP, data + mirror + (3 - r) * quarter);
            storeMirrored (d, bins.mirroredQ, data + half + mirror + (3 - r) * quarter);
        };
        const auto points = loadRows (d, from, t, quarter);
        const FourPoints mirrored (mirroredRow (0), mirroredRow (1), mirroredRow (2), mirroredRow (3));
        const auto w0 = splitterAt (d, tables, t), w1 = splitterAt (d, tables, t + quarter);
        write (0, split (d, points.y0, mirrored.y3, w0));
        write (1, split (d, points.y1, mirrored.y2, w1));
        write (2, split (d, points.y2, mirrored.y1, w0.halfOn()));
        write (3, split (d, points.y3, mirrored.y0, w1.halfOn()));
    }
}

template <class Source>
void forwardFrom (const HartleyTables& tables, const Source& source, float* data, float* scratch)
{
    const auto half = static_cast<std::size_t> (tables.length) / 2;
    const SplitComplex outside { data, data + half }, inside { scratch, scratch + half };
    deinterleavingPass (tables, source, inside);
    secondPass (tables, inside, outside);
    const auto result = widePasses (tables.middle.data(), half, outside, inside);
    splitFirstElement (tables, result, data);
    splittingPass (tables, result, data);
}

void Forward (const HartleyTables& tables, float* data, float* scratch)
{
    forwardFrom (tables, PlainSource { data }, data, scratch);
}

void ForwardWindowed (const HartleyTables& tables, const WindowedInput& input, float* data, float* scratch)
{
    forwardFrom (tables, WindowedSource { input }, data, scratch);
}

template <class V>
HWY_INLINE Complex<V> swapped (const Complex<V>& z)
{
    return { z.im, z.re };
}

/** One vector of the first pass of the way back. */
template <class D, class V = hn::Vec<D>>
HWY_INLINE void firstPassOf (D d, const HartleyTables& tables, const Complex<V>* rows, SplitComplex to, std::size_t t)
{
    FourPoints points (swapped (rows[0]), swapped (rows[1]), swapped (rows[2]), swapped (rows[3]));
    turnByElement (d, points, tables.first.data(), static_cast<std::size_t> (tables.length) / 8, t);
    storeFirst (d, points, to, t);
}

/** Element 0 of the first pass of the way back. */
inline void joinFirstElement (const HartleyTables& tables, const float* data, SplitComplex to)
{
    const hn::CappedTag<float, 1> d;
    const auto half = static_cast<std::size_t> (tables.length) / 2, quarter = half / 4;
    const auto at = [&] (std::size_t k) HWY_ATTR { return hn::LoadU (d, data + k); };
    const auto dc = at (0), nyquist = at (half), p = at (half / 2), q = at (half + half / 2);
    Complex<hn::Vec<decltype (d)>> rows[4] {
        { hn::Add (dc, nyquist), hn::Sub (dc, nyquist) }, {}, { hn::Add (p, q), hn::Sub (p, q) }, {}
    };
    join (d, { at (quarter), at (half + quarter), at (3 * quarter), at (half + 3 * quarter) },
          splitterAt (d, tables, quarter), rows[1], rows[3]);
    firstPassOf (d, tables, rows, to, 0);
}

/** The first pass of the way back, but for element 0. */
inline void joiningPass (const HartleyTables& tables, const float* data, SplitComplex to)
{
    const hn::CappedTag<float, 16> d;
    using V = hn::Vec<decltype (d)>;
    const auto half = static_cast<std::size_t> (tables.length) / 2, quarter = half / 4;

    for (std::size_t t = 1; t <= quarter / 2; t += hn::Lanes (d))
    {
        const auto mirror = mirrorOf (d, t, quarter);
        Complex<V> rows[4], mirrored[4];
        const auto joinRow = [&] (std::size_t r, const Splitter<V>& w) HWY_ATTR
        {
            const auto* straight = data + t + r * quarter;
            const auto* back = data + mirror + (3 - r) * quarter;
            join (d,
                  { hn::LoadU (d, straight), hn::LoadU (d, straight + half), loadMirrored (d, back),
                    loadMirrored (d, back + half) },
                  w, rows[r], mirrored[3 - r]);
        };
        const auto w0 = splitterAt (d, tables, t), w1 = splitterAt (d, tables, t + quarter);
        joinRow (0, w0);
        joinRow (1, w1);
        joinRow (2, w0.halfOn());
        joinRow (3, w1.halfOn());

        for (auto& z : mirrored)
            z = { hn::Reverse (d, z.re), hn::Reverse (d, z.im) };

        firstPassOf (d, tables, rows, to, t);
        firstPassOf (d, tables, mirrored, to, mirror);
    }
}

/** The last pass of the way back. */
inline void interleavingPass (const HartleyTables& tables, SplitComplex from, float* data)
{
    const hn::CappedTag<float, 16> d;
    const auto quarter = static_cast<std::size_t> (tables.length) / 8;

    for (std::size_t t = 0; t < quarter; t += hn::Lanes (d))
    {
        const auto points = loadRows (d, from, t, quarter);
        hn::StoreInterleaved2 (points.y0.im, points.y0.re, d, data + 2 * t);
        hn::StoreInterleaved2 (points.y1.im, points.y1.re, d, data + 2 * (t + quarter));
        hn::StoreInterleaved2 (points.y2.im, points.y2.re, d, data + 2 * (t + 2 * quarter));
        hn::StoreInterleaved2 (points.y3.im, points.y3.re, d, data + 2 * (t + 3 * quarter));
    }
}

/** The way back of 64 bins or fewer, 16 phases at a time. */
inline void inverseOfFew (const HartleyTables& tables, float* data, std::size_t count, float* scratch)
{
    // Real and imaginary parts change places: the passes, which turn forwards, then turn backwards.
    const SplitComplex inside { scratch, scratch + blockLength };
    const SplitComplex other = inside + 2 * blockLength, swappedInside { inside.im, inside.re };
    const auto half = static_cast<std::size_t> (tables.length) / 2, phases = half / fewBins;
    const FewBins bins (data, half, count);

    for (std::size_t phase = 0; phase < phases; phase += phasesAtOnce)
    {
        spreadOverPhases (tables, bins, phase, swappedInside);
        spreadingPass (widePasses (tables.block.data(), blockLength, inside, other), phases, data + phase);
    }
}

inline void inverseOfMany (const HartleyTables& tables, float* data, std::size_t bins, float* scratch)
{
    const auto length = static_cast<std::size_t> (tables.length), half = length / 2;
    const SplitComplex inside { scratch + half, scratch }, other { inside.re + length, inside.im + length };
    std::fill (data + bins, data + half, 0.0f);
    std::fill (data + half + bins, data + length, 0.0f);
    joinFirstElement (tables, data, inside);
    joiningPass (tables, data, inside);
    secondPass (tables, inside, other);
    interleavingPass (tables, widePasses (tables.middle.data(), half, other, inside), data);
}

void Inverse (const HartleyTables& tables, float* data, std::size_t bins, float* scratch)
{
    bins > 0 && bins <= fewBins ? inverseOfFew (tables, data, bins, scratch)
                                : inverseOfMany (tables, data, bins, scratch);
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace tarvelline
{
HWY_EXPORT (Forward);
HWY_EXPORT (ForwardWindowed);
HWY_EXPORT (Inverse);

void chooseInstructionSet() { hwy::GetChosenTarget().Update (hwy::SupportedTargets()); }

void hartleyForward (const HartleyTables& tables, float* data, float* scratch) noexcept
{
    HWY_DYNAMIC_DISPATCH (Forward) (tables, data, scratch);
}

void hartleyForward (const HartleyTables& tables, const WindowedInput& input, float* data, float* scratch) noexcept
{
    HWY_DYNAMIC_DISPATCH (ForwardWindowed) (tables, input, data, scratch);
}

void hartleyInverse (const HartleyTables& tables, float* data, std::size_t bins, float* scratch) noexcept
{
    HWY_DYNAMIC_DISPATCH (Inverse) (tables, data, bins, scratch);
}
} // namespace tarvelline
#endif
