// SPDX-License-Identifier: GPL-3.0-or-later
// What all vector code shares: complex numbers in vectors, and loops that end anywhere. Compiled once for each
// instruction set, inside the source that includes it.
#if defined(TARVELLINE_VECTORS_INL) == defined(HWY_TARGET_TOGGLE)
    #ifdef TARVELLINE_VECTORS_INL
        #undef TARVELLINE_VECTORS_INL
    #else
        #define TARVELLINE_VECTORS_INL
    #endif

    #include <hwy/highway.h>

    #include <cstddef>

HWY_BEFORE_NAMESPACE();
namespace tarvelline
{
namespace HWY_NAMESPACE
{
namespace hn = hwy::HWY_NAMESPACE;

/** Complex values, real and imaginary parts apart. */
struct SplitComplex
{
    float* re;
    float* im;
};

template <class V>
struct Complex
{
    // Written, because those of the compiler's own making lie outside Highway's target attributes: GCC refuses them on ARM.
    HWY_INLINE Complex() {}
    HWY_INLINE Complex (V real, V imaginary) : re (real), im (imaginary) {}

    V re, im;
};

template <class D, class V = hn::Vec<D>>
HWY_INLINE Complex<V> load (D d, SplitComplex from, std::size_t at)
{
    return { hn::LoadU (d, from.re + at), hn::LoadU (d, from.im + at) };
}

template <class D, class V = hn::Vec<D>>
HWY_INLINE void store (D d, const Complex<V>& value, SplitComplex to, std::size_t at)
{
    hn::StoreU (value.re, d, to.re + at);
    hn::StoreU (value.im, d, to.im + at);
}

template <class V>
HWY_INLINE Complex<V> operator+ (const Complex<V>& a, const Complex<V>& b)
{
    return { hn::Add (a.re, b.re), hn::Add (a.im, b.im) };
}

template <class V>
HWY_INLINE Complex<V> operator- (const Complex<V>& a, const Complex<V>& b)
{
    return { hn::Sub (a.re, b.re), hn::Sub (a.im, b.im) };
}

template <class V>
HWY_INLINE Complex<V> operator* (const Complex<V>& a, const Complex<V>& b)
{
    return { hn::MulSub (a.re, b.re, hn::Mul (a.im, b.im)), hn::MulAdd (a.re, b.im, hn::Mul (a.im, b.re)) };
}

/** Calls step (tag, k) for the elements from `k` to `end`: whole vectors of the tag first, then ever shorter ones. */
template <std::size_t lanes, typename Step>
HWY_INLINE void forEachVector (std::size_t k, std::size_t end, const Step& step)
{
    const hn::CappedTag<float, lanes> d;

    for (; k + hn::Lanes (d) <= end; k += hn::Lanes (d))
        step (d, k);

    if constexpr (lanes > 1)
        forEachVector<lanes / 2> (k, end, step);
}

/** The same with the widest vectors of the machine, up to 16 floats. */
template <typename Step>
HWY_INLINE void forEachVector (std::size_t k, std::size_t end, const Step& step)
{
    forEachVector<hn::MaxLanes (hn::CappedTag<float, 16>())> (k, end, step);
}

// NOLINTNEXTLINE(google-readability-namespace-comments)
} // namespace HWY_NAMESPACE
} // namespace tarvelline
HWY_AFTER_NAMESPACE();

#endif
