// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Terminal.h"

#include <juce_core/juce_core.h>

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace tarvelline::render
{
namespace
{
volatile std::sig_atomic_t interruptNoted = 0;

void noteInterrupt (int) { interruptNoted = 1; }

void noteInterruptsWith (int flags)
{
    struct sigaction action = {};
    action.sa_handler = noteInterrupt;
    action.sa_flags = flags | SA_RESTART;
    sigaction (SIGINT, &action, nullptr);
    sigaction (SIGTERM, &action, nullptr);
    sigaction (SIGHUP, &action, nullptr);
}
} // namespace

void noteInterrupts() { noteInterruptsWith (static_cast<int> (SA_RESETHAND)); }

void ignoreFurtherInterrupts() { noteInterruptsWith (0); }

bool interrupted() noexcept { return interruptNoted != 0; }

Progress::Progress() : nextShow (juce::Time::getMillisecondCounter() + 1000), onTerminal (isatty (STDERR_FILENO) != 0)
{
}

Progress::~Progress()
{
    if (shown)
        std::fputs ("\r\033[K", stderr);
}

void Progress::show (std::int64_t done, std::int64_t total)
{
    constexpr std::uint32_t interval = 200; // milliseconds

    if (! onTerminal || juce::Time::getMillisecondCounter() < nextShow)
        return;

    std::fprintf (stderr, "\r%3d %%", static_cast<int> (100 * done / total));
    shown = true;
    nextShow = juce::Time::getMillisecondCounter() + interval;
}
} // namespace tarvelline::render
