// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>

namespace tarvelline::render
{
/** From now on Ctrl-C and a polite kill are only noted, for interrupted() to tell; a second one ends the program at once. */
void noteInterrupts();
bool interrupted() noexcept;

/** For a process that another one stops: no second request ends it before it has cleared up. */
void ignoreFurtherInterrupts();

/** How far a long job is, as one line that is rewritten on the terminal. Shows nothing when stderr is no terminal, nor
    within the first second. Its line is gone once it is destroyed. */
class Progress
{
public:
    Progress();
    ~Progress();

    void show (std::int64_t done, std::int64_t total);

private:
    std::uint32_t nextShow = 0; // milliseconds of the framework's clock
    bool shown = false;
    const bool onTerminal;
};
} // namespace tarvelline::render
