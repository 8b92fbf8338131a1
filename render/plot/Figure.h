// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/plot/ShiftTrace.h"
#include "render/plot/Source.h"

namespace tarvelline::render
{
/** Draws spectrograms of a recording before and after, one above the other with one time axis, and the shifts that sound
    as curves over the second.
    @param before, after  both at the same rate, lined up to the sample; each read once, from its start to its end
    @param latency        samples by which playing runs ahead of what is heard of it in `after` */
juce::Image drawFigure (const Source& before, const Source& after, const juce::String& beforeName,
                        const juce::String& afterName, const ShiftTrace& shifts, int latency);
} // namespace tarvelline::render
