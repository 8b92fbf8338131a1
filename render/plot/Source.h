// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <cstdint>
#include <functional>

namespace tarvelline::render
{
/** A recording as a picture asks for it. */
struct Source
{
    double rate = 0.0; // Hz
    int channels = 0;
    std::int64_t length = 0; // samples a channel

    /** Puts the `count` samples from `position` on, all of them within the recording, into a buffer of `channels` channels at
        its sample `at`. Called with rising positions, never twice for one sample. */
    std::function<void (juce::AudioBuffer<float>&, int at, int count, std::int64_t position)> read;
};
} // namespace tarvelline::render
