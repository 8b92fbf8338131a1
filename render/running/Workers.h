// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/running/Process.h"

#include <functional>
#include <vector>

namespace tarvelline::render
{
/** Runs this program `count` times, up to `jobs` at once, and gives what became of each. When asked to stop it begins no
    more, passes that on and waits for those that run.

    @param argumentsFor  what run i is to be told; on any thread, just before it begins
    @param finished      called here, several times a second, with the number of runs that are over */
std::vector<Outcome> runWorkers (int count, int jobs, const std::function<juce::StringArray (int)>& argumentsFor,
                                 const std::function<void (int)>& finished);
} // namespace tarvelline::render
