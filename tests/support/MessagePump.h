// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tests/support/Framework.h"

#include <chrono>
#include <thread>

namespace tarvelline::test
{
/** Delivers the messages of the message thread, which must be the caller, until `done` holds or five seconds have passed.
    @returns whether `done` held */
template <typename Condition>
bool pumpMessagesUntil (Condition&& done)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds (5);

    while (! done())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;

        if (! dispatchNextMessageOnSystemQueue (true))
            std::this_thread::sleep_for (std::chrono::milliseconds (1));
    }

    return true;
}
} // namespace tarvelline::test
