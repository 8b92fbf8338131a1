// SPDX-License-Identifier: GPL-3.0-or-later
// The way back of a few low bins, X[k] being the Fourier coefficients. With N = 128 P the samples P m + p of one phase p are a
// transform of 128 points, in which 64 bins have room:
//
//     x[P m + p] = X[0] + 2 * sum over 0 < k < 64 of Re (X[k] exp (2 pi i k p / N) exp (2 pi i k m / 128))
//
// Sixteen phases stand side by side, so that the passes are those of a longer transform from stride 16 on; nothing is shuffled,
// and what they touch stays in the nearest cache. Compiled once for each instruction set.
#if defined(TARVELLINE_HARTLEY_FEW_BINS_INL) == defined(HWY_TARGET_TOGGLE)
    #ifdef TARVELLINE_HARTLEY_FEW_BINS_INL
        #undef TARVELLINE_HARTLEY_FEW_BINS_INL
    #else
        #define TARVELLINE_HARTLEY_FEW_BINS_INL
    #endif

    #include "engine/transform/HartleyPasses-inl.h"

    #include <hwy/highway.h>

    #include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
constexpr std::size_t fewBins = HartleyTables::fewBins, phasesAtOnce = HartleyTables::phasesAtOnce;
constexpr std::size_t blockLength = fewBins * phasesAtOnce;

/** The coefficients, and what those of 0 and of Nyquist give each phase. Copied, for the samples take their place. */
struct FewBins
{
    FewBins (const float* data, std::size_t half, std::size_t binCount) : count (binCount)
    {
        for (std::size_t k = 1; k < count; ++k)
        {
            re[k] = 0.5f * (data[half + k] + data[k]);
            im[k] = 0.5f * (data[half + k] - data[k]);
        }

        for (std::size_t p = 0; p < phasesAtOnce; p += 2)
        {
            outermost[p] = data[0] + data[half];
            outermost[p + 1] = data[0] - data[half];
        }
    }

    std::size_t count;
    float re[fewBins], im[fewBins];
    float outermost[phasesAtOnce];
};

/** The bins of the phases from `phase` on as those of 64 complex values each, even samples real and odd ones imaginary: with
    Y[k] = X[k] exp (2 pi i k p / N) and Y' = conj (Y[64 - k]), Z[k] = Y[k] + Y' + i exp (2 pi i k / 128) (Y[k] - Y'). */
inline void spreadOverPhases (const HartleyTables& tables, const FewBins& bins, std::size_t phase, SplitComplex to)
{
    const hn::CappedTag<float, phasesAtOnce> d;
    using V = hn::Vec<decltype (d)>;
    const auto phases = static_cast<std::size_t> (tables.length) / (2 * fewBins);

    for (std::size_t p = 0; p < phasesAtOnce; p += hn::Lanes (d))
    {
        const auto bin = [&] (std::size_t k) HWY_ATTR
        {
            const auto* turns = tables.phases.data() + 2 * k * phases + phase + p;
            return Complex<V> { hn::Set (d, bins.re[k]), hn::Set (d, bins.im[k]) }
                   * Complex<V> { hn::LoadU (d, turns), hn::LoadU (d, turns + phases) };
        };
        const auto storePair = [&] (std::size_t k, const Complex<V>& even, const Complex<V>& odd) HWY_ATTR
        {
            const auto* turn = tables.blockSplit.data() + 2 * k;
            const auto turned = odd * Complex<V> { hn::Set (d, turn[0]), hn::Set (d, turn[1]) };
            store (d, even + turned, to, k * phasesAtOnce + p);
            store (d, Complex<V> { hn::Sub (even.re, turned.re), hn::Sub (turned.im, even.im) }, to,
                   (fewBins - k) * phasesAtOnce + p);
        };
        const auto outermost = hn::LoadU (d, bins.outermost + p);
        store (d, Complex<V> { outermost, outermost }, to, p);
        const Complex<V> nothing { hn::Zero (d), hn::Zero (d) };

        for (std::size_t k = 1; k <= fewBins / 2; ++k)
        {
            const auto straight = k < bins.count ? bin (k) : nothing;

            if (fewBins - k >= bins.count)
            {
                storePair (k, straight, straight);
                continue;
            }

            const auto back = bin (fewBins - k);
            storePair (k, { hn::Add (straight.re, back.re), hn::Sub (straight.im, back.im) },
                       { hn::Sub (straight.re, back.re), hn::Add (straight.im, back.im) });
        }
    }
}

/** The last pass of a block, the samples of one phase P apart. */
inline void spreadingPass (SplitComplex from, std::size_t phases, float* data)
{
    const hn::CappedTag<float, phasesAtOnce> d;
    constexpr auto quarter = blockLength / 4;
    const auto rowsApart = 2 * phases * fewBins / 4;

    for (std::size_t t = 0; t < quarter; t += hn::Lanes (d))
    {
        const auto points = loadRows (d, from, t, quarter);
        auto* sample = data + 2 * phases * (t / phasesAtOnce) + t % phasesAtOnce;

        for (const auto& value : { points.y0, points.y1, points.y2, points.y3 })
        {
            hn::StoreU (value.im, d, sample);
            hn::StoreU (value.re, d, sample + phases);
            sample += rowsApart;
        }
    }
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
