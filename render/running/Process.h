// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <memory>
#include <string>

namespace tarvelline::render
{
/** What became of a process: its exit code, or 128 + the signal that ended it, on Windows the exception (negative); and all
    that it printed. */
struct Outcome
{
    static constexpr int neverBegun = -1;

    int exitCode = neverBegun;
    std::string text;
};

/** Another run of this program, with nothing to read, whose output is collected. */
class Process
{
public:
    /** Starts it. Throws UserError when the system does not. */
    explicit Process (const juce::StringArray& arguments);
    ~Process();

    /** Takes what it prints until it has ended. Once. */
    Outcome wait();

    /** Asks it to clear up and end, as SIGTERM does. Any thread, also while another one waits. */
    void stop();

private:
    struct Handles; // of the system
    const std::unique_ptr<Handles> handles;
};
} // namespace tarvelline::render
