// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/SystemFiles.h"

#include "render/options/Errors.h"
#include "render/running/Terminal.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace tarvelline::render
{
namespace
{
juce::String reason() { return std::strerror (errno); }

// A pipe that gives or takes nothing must not keep the program from being stopped.
void waitFor (int stream, short event)
{
    constexpr int patience = 200; // milliseconds
    pollfd waiting { stream, event, 0 };

    do
    {
        if (interrupted())
            throw Interrupted();
    } while (poll (&waiting, 1, patience) <= 0);
}

bool mayGoOn() { return errno == EINTR || errno == EAGAIN; }
} // namespace

void prepareStreams()
{
    for (const auto stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        if (fcntl (stream, F_GETFD) < 0)
            static_cast<void> (
                open ("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY)); // takes the lowest number
}

std::size_t readInput (char* into, std::size_t most)
{
    for (;;)
    {
        waitFor (STDIN_FILENO, POLLIN);

        if (const auto got = read (STDIN_FILENO, into, most); got >= 0)
            return static_cast<std::size_t> (got);

        if (! mayGoOn())
            throw UserError ("IN: cannot read the standard input: " + reason());
    }
}

void writeOutput (const char* bytes, std::size_t count)
{
    constexpr std::size_t always = 4096; // what a pipe that takes anything takes at once
    std::signal (SIGPIPE, SIG_IGN);      // a reader that has gone is an error, told as one

    while (count > 0)
    {
        waitFor (STDOUT_FILENO, POLLOUT);
        const auto written = write (STDOUT_FILENO, bytes, std::min (count, always));

        if (written < 0 && ! mayGoOn())
            throw UserError ("OUT: cannot write all to the standard output: " + reason());

        if (written > 0)
        {
            bytes += written;
            count -= static_cast<std::size_t> (written);
        }
    }
}

juce::String makeNewFile (const juce::File& file)
{
    constexpr mode_t allMay = 0666; // but for what the user's mask forbids
    const auto made = open (file.getFullPathName().toRawUTF8(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, allMay);
    return made >= 0 && close (made) == 0 ? juce::String() : reason();
}
} // namespace tarvelline::render
