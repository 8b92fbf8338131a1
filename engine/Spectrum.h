// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>

namespace tarvelline
{
/** Keeps magnitudes and denominators off zero and silence off denormals: -200 dB, far below any audible bin. */
inline constexpr float denormalGuard = 1.0e-10f;

/** One bin of a spectrum, or a phasor. */
struct Complex
{
    float re, im;

    float magnitude() const noexcept { return std::sqrt (re * re + im * im + denormalGuard); }
    Complex times (Complex other) const noexcept
    {
        return { re * other.re - im * other.im, re * other.im + im * other.re };
    }
    Complex timesConjugate (Complex other) const noexcept
    {
        return { re * other.re + im * other.im, im * other.re - re * other.im };
    }
    Complex scaled (float factor) const noexcept { return { re * factor, im * factor }; }

    /** Brought back to length 1, from which rounding moves a long product of unit phasors. */
    Complex normalised() const noexcept { return scaled (1.0f / (magnitude() + denormalGuard)); }
};

/** A spectrum of K bins in pair layout: bin k is (data[k], data[K + k]). */
struct SpectrumView
{
    float* re;
    float* im;

    SpectrumView (float* data, int binCount) noexcept : re (data), im (data + binCount) {}

    Complex get (int bin) const noexcept { return { re[bin], im[bin] }; }

    void set (int bin, Complex value) const noexcept
    {
        re[bin] = value.re;
        im[bin] = value.im;
    }
};

/** Where a running phasor is renormalised: at this count by the synthesis frames, one frame later by the analysis frame,
    which starts the count again at 1. */
inline constexpr int renormaliseSynthesisAt = 254;
inline constexpr int renormaliseAdvanceAt = 255;

/** The frame's value between its samples; `position` below the frame's length, which has one entry more to interpolate into. */
inline float interpolated (const float* frame, float position) noexcept
{
    const auto index = static_cast<int> (position);
    return frame[index] + (frame[index + 1] - frame[index]) * (position - static_cast<float> (index));
}
} // namespace tarvelline
