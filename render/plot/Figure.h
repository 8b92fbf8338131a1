// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/plot/ShiftTrace.h"

#include <juce_audio_formats/juce_audio_formats.h>

namespace tarvelline::render
{
/** Draws spectrograms of a recording before and after, one above the other with one time axis, and the shifts that sound
    as curves over the second.
    @param before, after  both at the same rate, lined up to the sample; read all over
    @param shifts         every ShiftTrace::interval samples of playing
    @param latency        samples by which playing runs ahead of what is heard of it in `after` */
juce::Image drawFigure (juce::AudioFormatReader& before, juce::AudioFormatReader& after, const juce::String& beforeName,
                        const juce::String& afterName, const std::vector<ShiftTrace::Point>& shifts, int latency);
} // namespace tarvelline::render
