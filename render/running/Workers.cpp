// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Workers.h"

#include "render/running/Terminal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvelline::render
{
namespace
{
struct Worker
{
    pid_t process = -1;
    int pipe = -1; // what it prints comes out here; at its end the worker is done
    std::size_t piece = 0;
};

[[noreturn]] void work (int printInto, const std::function<int()>& piece)
{
    ignoreFurtherInterrupts();
    dup2 (printInto, STDOUT_FILENO);
    dup2 (printInto, STDERR_FILENO);
    close (printInto);
    const auto code = piece();
    std::fflush (nullptr);
    _exit (code);
}

Worker start (std::size_t piece, const std::function<int (int)>& toDo, WorkOutcome& outcome)
{
    std::array<int, 2> ends {};
    std::fflush (nullptr); // or it would be printed twice

    if (pipe (ends.data()) == 0)
    {
        const auto process = fork();

        if (process == 0)
        {
            close (ends[0]);
            work (ends[1], [&] { return toDo (static_cast<int> (piece)); });
        }

        close (ends[1]);

        if (process > 0)
            return { process, ends[0], piece };

        close (ends[0]);
    }

    outcome.text = std::string ("cannot start a process: ") + std::strerror (errno);
    return {};
}

// False once the worker has ended.
bool readFrom (const Worker& worker, WorkOutcome& outcome)
{
    std::array<char, 4096> text {};
    const auto bytes = read (worker.pipe, text.data(), text.size());

    if (bytes > 0)
        outcome.text.append (text.data(), static_cast<std::size_t> (bytes));

    if (bytes > 0 || (bytes < 0 && errno == EINTR))
        return true;

    close (worker.pipe);
    int status = 0;

    while (waitpid (worker.process, &status, 0) < 0 && errno == EINTR)
    {
    }

    outcome.exitCode = WIFEXITED (status) ? WEXITSTATUS (status) : 128 + WTERMSIG (status);
    return false;
}

std::vector<pollfd> pipesOf (const std::vector<Worker>& workers)
{
    std::vector<pollfd> pipes;
    pipes.reserve (workers.size());

    for (const auto& worker : workers)
        pipes.push_back ({ worker.pipe, POLLIN, 0 });

    return pipes;
}
} // namespace

std::vector<WorkOutcome> runWorkers (int count, int jobs, const std::function<int (int)>& toDo,
                                     const std::function<void (int)>& finished)
{
    constexpr int patience = 200; // milliseconds until an interruption is looked for again
    std::vector<WorkOutcome> outcomes (static_cast<std::size_t> (count));
    std::vector<Worker> workers;
    bool stopping = false;

    for (std::size_t next = 0; next < outcomes.size() || ! workers.empty();)
    {
        if (interrupted() && ! stopping)
        {
            stopping = true;
            next = outcomes.size();

            for (const auto& worker : workers)
                kill (worker.process, SIGTERM);
        }

        for (; next < outcomes.size() && workers.size() < static_cast<std::size_t> (jobs); ++next)
            if (const auto worker = start (next, toDo, outcomes[next]); worker.process > 0)
                workers.push_back (worker);

        auto pipes = pipesOf (workers);

        if (poll (pipes.data(), pipes.size(), patience) <= 0)
            continue;

        std::vector<Worker> running;

        for (std::size_t i = 0; i < workers.size(); ++i)
            if (pipes[i].revents == 0 || readFrom (workers[i], outcomes[workers[i].piece]))
                running.push_back (workers[i]);

        workers = running;
        finished (static_cast<int> (next - workers.size()));
    }

    return outcomes;
}
} // namespace tarvelline::render
