// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/transform/HartleyTables.h"

namespace tarvelline
{
/** N samples to be multiplied by a window; `offset` is then added to those of odd index and taken off the others. */
struct WindowedInput
{
    const float *samples, *window;
    float offset;
};

/** The discrete Hartley transform of real single-precision data, in place.

    Definition: H[k] = sum over n of x[n] (cos (2 pi n k / N) + sin (2 pi n k / N)), k = 0 .. N - 1, unscaled. It is its
    own inverse up to the factor N, so one transform serves analysis and resynthesis.

    Shapes: N = length, a power of two from 2048 to 8192; K = N / 2. Data need no alignment; 64 bytes are fastest.
    Threads: init() while nobody transforms; the transforms are const and may run on any thread, each on
            its own data. Real time: the transforms allocate nothing, lock nothing and never throw; they use 64 KB of
            the stack, whatever the length.
    Errors: a length outside the shapes above throws std::invalid_argument, and the tables stay as they were.
    Results: the same on every run on one machine; machines with other vector instructions round differently.

    Method: N reals as N / 2 complex values, radix-4 passes that sort themselves (Stockham), and one pass, fused with the
            outermost of them, between complex bins and the pairs of forward(). Nothing is bit-reversed.
    Sources: Bracewell, "The fast Hartley transform", Proc. IEEE 72(8), 1984; Cochran and others, "What is the fast Fourier
            transform?", Proc. IEEE 55(10), 1967, for Stockham's order; Sorensen, Jones, Heideman and Burrus, "Real-valued
            fast Fourier transform algorithms", IEEE Trans. ASSP 35(6), 1987, for the half-length method. */
class HartleyTransform
{
public:
    /** Without tables, length 0. */
    HartleyTransform() = default;

    explicit HartleyTransform (int transformLength) { init (transformLength); }

    /** Builds the tables for another length. Allocates. */
    void init (int transformLength);

    int getLength() const noexcept { return tables.length; }

    /** Transforms `data` (N floats) and reverses the upper half, so that bin k (0 <= k < K) is the pair
        (data[k], data[K + k]).

        The pair is (Re - Im, Re + Im) of the Fourier coefficient X[k] = sum x[n] exp (-2 pi i n k / N), that is (1 + i) X[k]
        when read as re + i im: turned by 45 degrees and sqrt (2) times as long, which leaves ratios of magnitudes and
        differences of phase exact. data[K], in the pair of bin 0, is the Nyquist term. */
    void forward (float* data) const noexcept;

    /** The same of an input that stands elsewhere. */
    void forward (const WindowedInput&, float* data) const noexcept;

    /** Undoes forward(), times N.
        @param bins  those from here on are taken for 0, whatever stands there. 64 or fewer cost less than half as much. */
    void inverse (float* data, int bins = HartleyTables::longest) const noexcept;

private:
    HartleyTables tables;
};
} // namespace tarvelline
