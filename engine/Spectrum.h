// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvelline
{
/** Keeps magnitudes and denominators off zero and silence off denormals: -200 dB, far below any audible bin. */
inline constexpr float denormalGuard = 1.0e-10f;

/** Where a running phasor is renormalised: at this count by the synthesis frames, one frame later by the analysis frame,
    which starts the count again at 1. */
inline constexpr int renormaliseSynthesisAt = 254;
inline constexpr int renormaliseAdvanceAt = 255;
} // namespace tarvelline
