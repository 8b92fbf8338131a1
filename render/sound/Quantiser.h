// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
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

    /** The samples as a format writer takes them: in the upper bits of 32, one array a channel. Valid until the next call.
        One or two channels. */
    const int** convert (const juce::AudioBuffer<float>&, int start, int count);

private:
    const int bits;
    juce::Random noise { 1 };
    std::array<std::vector<int>, 2> samples;
    std::array<const int*, 2> channels {};
};
} // namespace tarvelline::render
