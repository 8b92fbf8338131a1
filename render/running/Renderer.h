// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/running/ModuleBank.h"
#include "render/sound/RecordingOutput.h"

#include <functional>

namespace tarvelline::render
{
struct RenderResult
{
    float peak = 0.0f;      // largest magnitude in the output
    double seconds = 0.0;   // that the rendering took
    int unplayedEvents = 0; // after the end of the output
};

/** Plays the whole recording, and one latency of silence after it for what rings on, through the prepared modules, and
    appends to `out` what comes back, less the silence of the latency before it: the two line up to the sample.

    Throws UserError when reading or writing fails, Interrupted when the program is asked to stop.
    @param observe  called with every block that was played */
RenderResult renderRecording (Recording& in, ModuleBank&, Timeline, int largestBlock, RecordingOutput& out,
                              const std::function<void (const Block&)>& observe);
} // namespace tarvelline::render
