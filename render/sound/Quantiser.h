// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <vector>

namespace tarvelline::render
{
/** Rounds samples to integers of 16 or 24 bits. At 16 bits each gets triangular dither of two steps' width first, so that
    the error is steady noise (-96 dB), independent of the sound; the noise is the same in every run. At 24 bits the step
    lies under any converter's noise. Beyond full scale it clips; what is no number becomes 0. */
class Quantiser
{
public:
    explicit Quantiser (int bitsPerSample) : bits (bitsPerSample) {}

    /** The samples as the sound library takes them: in the upper bits of 32. Valid until the next call. */
    const int* convert (const std::vector<float>&);

private:
    const int bits;
    juce::Random noise { 1 };
    std::vector<int> integers;
};
} // namespace tarvelline::render
