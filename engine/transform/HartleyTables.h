// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

#include <cstddef>

namespace tarvelline
{
/** The constants of a Hartley transform of N = length real values, computed as a complex transform of M = N / 2.

    A radix-4 pass at stride s combines the elements t, t + M/4, t + M/2 and t + 3M/4; its turns depend on t / s alone:
    w, w squared and w cubed with w = exp (-2 pi i (t / s) / (M / s)), its twiddle factors. */
struct HartleyTables
{
    static constexpr int shortest = 2048; // the shortest that has passes at strides 16 and 64 between its outer ones
    static constexpr int longest = 8192;  // the frame at the highest rates; a transform's scratch is on the stack
    static constexpr std::size_t fewBins =
        64; // no more than these have a way back of their own: 128 samples of each phase
    static constexpr std::size_t phasesAtOnce = 16;

    HartleyTables() = default;

    /** @param transformLength  N, a power of two from `shortest` to `longest` */
    explicit HartleyTables (int transformLength);

    int length = 0;              // N; 0 while there are no tables
    AlignedVector<float> first;  // stride 1: six rows of M/4: the real and imaginary parts of w, w squared, w cubed
    AlignedVector<float> second; // stride 4: the same, each turn four times, so that any vector width may load it
    AlignedVector<float> middle; // strides 16, 64 ...: six values a turn, pass after pass; then radix 2, two each
    AlignedVector<float> split;  // two rows of M/2: (cos +- sin) / 2 of 2 pi k / N: splits complex bins into real ones

    // Of a few bins: with N = 128 P, those of every phase p < P, and 16 phases at once as M = 1024 complex values.
    AlignedVector<float> phases; // two rows of P for each of 64 bins: real and imaginary parts of exp (2 pi i k p / N)
    AlignedVector<float> blockSplit; // pairs, k <= 32: i exp (2 pi i k / 128)
    AlignedVector<float> block;      // strides 16 and 64 of M = 1024, as `middle`
};
} // namespace tarvelline
