// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvelline
{
/** Keeps magnitudes and denominators off zero and silence off denormals: -200 dB, far below any audible bin. */
inline constexpr float denormalGuard = 1.0e-10f;

/** At these counts of frames since a bin's reset rounding is taken out: of its running phasor by every synthesis frame that
    meets the first; of its advance by the analysis frame that reaches the second, which starts the count again at 1. */
inline constexpr int renormaliseSynthesisAt = 254;
inline constexpr int renormaliseAdvanceAt = 255;
} // namespace tarvelline
