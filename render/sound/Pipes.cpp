// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Pipes.h"

#include "render/options/Errors.h"
#include "render/running/Terminal.h"

#include <array>
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

void writeAll (const char* bytes, std::size_t count)
{
    while (count > 0)
    {
        waitFor (STDOUT_FILENO, POLLOUT);
        const auto written = write (STDOUT_FILENO, bytes, count);

        if (written < 0 && errno != EINTR && errno != EAGAIN)
            throw UserError (juce::String ("OUT: cannot write all to the standard output: ")
                             + juce::String (std::strerror (errno)));

        if (written > 0)
        {
            bytes += written;
            count -= static_cast<std::size_t> (written);
        }
    }
}
} // namespace

void occupyClosedStreams()
{
    for (const auto stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        if (fcntl (stream, F_GETFD) < 0)
            static_cast<void> (
                open ("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY)); // takes the lowest number
}

juce::File fileForPipe()
{
    return juce::File::getSpecialLocation (juce::File::tempDirectory).getChildFile ("tarvelline-render");
}

void copyFromInput (juce::OutputStream& out)
{
    std::array<char, 65536> bytes {};

    for (;;)
    {
        waitFor (STDIN_FILENO, POLLIN);
        const auto got = read (STDIN_FILENO, bytes.data(), bytes.size());

        if (got == 0)
            return;

        if (got < 0 && errno != EINTR && errno != EAGAIN)
            throw UserError (juce::String ("IN: cannot read the standard input: ")
                             + juce::String (std::strerror (errno)));

        if (got > 0 && ! out.write (bytes.data(), static_cast<std::size_t> (got)))
            return; // what keeps it tells
    }
}

void copyToOutput (const juce::File& file)
{
    std::signal (SIGPIPE, SIG_IGN); // a reader that has gone is an error, told as one
    juce::FileInputStream in (file);
    std::array<char, 4096> bytes {}; // what a pipe that takes anything takes at once

    for (int got = 0; (got = in.read (bytes.data(), static_cast<int> (bytes.size()))) > 0;)
        writeAll (bytes.data(), static_cast<std::size_t> (got));
}
} // namespace tarvelline::render
