// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarvelline::render
{
/** What became of one piece of work: its exit code, or 128 + the signal that ended it; and all that it printed. */
struct WorkOutcome
{
    int exitCode = -1; // -1 = never begun
    std::string text;
};

/** Does work(0) to work(count - 1), each in a process of its own, up to `jobs` at once. They begin as this process stands:
    it must have started no thread. When asked to stop it begins no more, passes that on and waits for those that run.

    @param finished  called here with the number of pieces done */
std::vector<WorkOutcome> runWorkers (int count, int jobs, const std::function<int (int)>& work,
                                     const std::function<void (int)>& finished);
} // namespace tarvelline::render
