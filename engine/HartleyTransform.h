// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace tarvelline
{
/** The discrete Hartley transform of real single-precision data, in place.

    Definition: H[k] = sum over n of x[n] (cos (2 pi n k / N) + sin (2 pi n k / N)), k = 0 .. N - 1, unscaled. It is its
    own inverse up to the factor N, so one routine serves analysis and resynthesis.

    Shapes: N = length, a power of two from 4 to 65536 (swap indices are 16 bits wide); K = N / 2.
    Threads: init() and release() while nobody transforms; the transforms are const and may run on any thread, each on
            its own data. Real time: the transforms allocate nothing, lock nothing and never throw.
    Errors: a length outside the shapes above is a caller's fault (asserted).

    Method: bit reversal, one pass of radix 4 (even log2 N) or 8 (odd), then passes of radix 4.
    Sources: Bracewell, "The fast Hartley transform", Proc. IEEE 72(8), 1984; Sorensen, Jones, Burrus and Heideman,
            "On computing the discrete Hartley transform", IEEE Trans. ASSP 33(5), 1985, for radix 4. */
class HartleyTransform
{
public:
    explicit HartleyTransform (int transformLength) { init (transformLength); }

    /** Builds the tables for another length. Allocates. */
    void init (int transformLength);

    /** Frees the tables; the length becomes 0. */
    void release();

    int getLength() const noexcept { return length; }

    /** The plain transform of `data` (N floats), natural order in and out. */
    void transform (float* data) const noexcept;

    /** transform(), then the upper half reversed, so that bin k (0 <= k < K) is the pair (data[k], data[K + k]).

        The pair is (Re - Im, Re + Im) of the Fourier coefficient X[k] = sum x[n] exp (-2 pi i n k / N), that is (1 + i) X[k]
        when read as re + i im: turned by 45 degrees and sqrt (2) times as long, which leaves ratios of magnitudes and
        differences of phase exact. data[K], in the pair of bin 0, is the Nyquist term. */
    void forward (float* data) const noexcept;

    /** Undoes forward(), times N: the upper half reversed back, then transform(). */
    void inverse (float* data) const noexcept;

private:
    /** Cosine and sine of one butterfly's angle, of twice and of three times that angle. */
    struct Twiddle
    {
        float cos1, sin1, cos2, sin2, cos3, sin3;
    };

    void swapBitReversed (float* data) const noexcept;
    void firstPassRadix4 (float* data) const noexcept;
    void firstPassRadix8 (float* data) const noexcept;
    void reverseUpperHalf (float* data) const noexcept;

    int length = 0;
    bool oddLog = false; // log2 (N) is odd: the first pass has radix 8
    std::vector<std::pair<std::uint16_t, std::uint16_t>> swapPairs;
    AlignedVector<Twiddle> twiddles; // of all radix-4 passes, in the order of their use
};
} // namespace tarvelline
