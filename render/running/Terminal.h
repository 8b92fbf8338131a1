// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace tarvelline::render
{
/** From now on Ctrl-C, SIGTERM and SIGHUP are noted, for interrupted() to tell, and end a system call that waits. The
    program has some seconds then to clear up, and is ended after them. A second Ctrl-C ends it at once.
    @param isWorker  a second one does not: whoever started this process passes on what it is told */
void noteInterrupts (bool isWorker);
bool interrupted() noexcept;

/** Keeps this process, and the plug-in in it, from opening a window system. Before the framework starts. */
void leaveDisplayAlone();

/** How far a long job is: on a terminal as one line that is rewritten, and gone at the end; else as a line every half
    minute. Shows nothing within the first second, and nothing at all when it is not wanted. */
class Progress
{
public:
    explicit Progress (bool isWanted);
    ~Progress();

    void show (std::int64_t done, std::int64_t total);

private:
    const bool wanted, onTerminal;
    std::uint32_t nextShow = 0; // milliseconds of the framework's clock
    bool shown = false;
};
} // namespace tarvelline::render
