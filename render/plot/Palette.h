// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvelline::render
{
/** Colours for levels: from near black over blue and blue green to near white, in equal steps of lightness (CIE L*), so that
    equal differences in dB look equal, also in grey print and to the colour-blind. Free of orange, which the curve has. */
juce::Colour paletteColour (float proportion);
} // namespace tarvelline::render
