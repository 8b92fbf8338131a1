// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Terminal.h"

#include <juce_core/juce_core.h>

#include <cstdio>
#include <unistd.h>

namespace tarvelline::render
{
Progress::Progress (bool isWanted)
    : wanted (isWanted), onTerminal (isatty (STDERR_FILENO) != 0),
      nextShow (juce::Time::getMillisecondCounter() + (onTerminal ? 1000 : 30000))
{
}

Progress::~Progress()
{
    if (shown && onTerminal)
        std::fputs ("\r     \r", stderr);
}

void Progress::show (std::int64_t done, std::int64_t total)
{
    if (! wanted || total <= 0 || juce::Time::getMillisecondCounter() < nextShow)
        return;

    std::fprintf (stderr, onTerminal ? "\r%3d %%" : "%d %% done\n", static_cast<int> (100 * done / total));
    shown = true;
    nextShow = juce::Time::getMillisecondCounter() + (onTerminal ? 200 : 30000);
}
} // namespace tarvelline::render
