// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <stdexcept>

namespace tarvelline::render
{
enum ExitCode
{
    exitDone = 0,
    exitSomeFailed = 1,
    exitFailed = 2,
    exitStopped = 130 // 128 + SIGINT, as a shell reports it
};

/** What the user can put right: the message names the thing at fault and what is accepted. Ends the program with code 2. */
class UserError : public std::runtime_error
{
public:
    explicit UserError (const juce::String& message) : std::runtime_error (message.toStdString()) {}
};

/** Thrown between two blocks once the program has been asked to stop. */
struct Interrupted
{
};
} // namespace tarvelline::render
