// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Process.h"

#include "render/options/Errors.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarvelline::render
{
struct Process::Handles
{
    std::mutex guard; // of `process`, which is -1 once its number may be another's
    int process = -1, output = -1;
};

Process::~Process() = default;

Process::Process (const juce::StringArray& arguments) : handles (std::make_unique<Handles>())
{
    const auto program = juce::File::getSpecialLocation (juce::File::hostApplicationPath).getFullPathName();
    std::vector<char*> words { const_cast<char*> (program.toRawUTF8()) }; // posix_spawn() does not write to them

    for (const auto& argument : arguments)
        words.push_back (const_cast<char*> (argument.toRawUTF8()));

    words.push_back (nullptr);
    std::array<int, 2> ends {};

    // Closed in the others that are started meanwhile: or the end of this one's output would wait for theirs.
    if (pipe2 (ends.data(), O_CLOEXEC) != 0)
        throw UserError (juce::String ("cannot start a process: ") + juce::String (std::strerror (errno)));

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init (&files);
    posix_spawn_file_actions_addopen (&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2 (&files, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2 (&files, ends[1], STDERR_FILENO);
    const auto failure = posix_spawn (&handles->process, words[0], &files, nullptr, words.data(), environ);
    posix_spawn_file_actions_destroy (&files);
    close (ends[1]);
    handles->output = ends[0];

    if (failure != 0)
    {
        close (handles->output);
        throw UserError (juce::String ("cannot start a process: ") + juce::String (std::strerror (failure)));
    }
}

Outcome Process::wait()
{
    Outcome outcome;
    std::array<char, 4096> text {};

    for (ssize_t bytes = 1; bytes > 0 || (bytes < 0 && errno == EINTR);)
        if (bytes = read (handles->output, text.data(), text.size()); bytes > 0)
            outcome.text.append (text.data(), static_cast<std::size_t> (bytes));

    close (handles->output);
    const auto ended = [this]
    {
        const std::lock_guard lock (handles->guard);
        return std::exchange (handles->process, -1);
    }();
    int status = 0;

    while (waitpid (ended, &status, 0) < 0 && errno == EINTR)
    {
    }

    outcome.exitCode = WIFEXITED (status) ? WEXITSTATUS (status) : 128 + WTERMSIG (status);
    return outcome;
}

void Process::stop()
{
    const std::lock_guard lock (handles->guard);

    if (handles->process > 0)
        kill (handles->process, SIGTERM);
}
} // namespace tarvelline::render
