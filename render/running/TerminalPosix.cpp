// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Terminal.h"

#include "render/options/Errors.h"

#include <csignal>
#include <cstdlib>
#include <unistd.h>

namespace tarvelline::render
{
namespace
{
// Seconds to clear up in; a worker's are over before those of whoever waits for it.
constexpr unsigned int workersGrace = 10, grace = 15;

volatile std::sig_atomic_t interruptNoted = 0;
volatile std::sig_atomic_t secondsLeft = 0;

void noteInterrupt (int)
{
    interruptNoted = 1;
    alarm (static_cast<unsigned int> (secondsLeft));
}

// The job that is stuck, in a pipe that nobody writes to or on a disk that does not answer.
void giveUp (int) { _exit (exitStopped); }

void onSignal (int signal, void (*handler) (int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags; // without SA_RESTART: what waits is to stop waiting
    sigaction (signal, &action, nullptr);
}
} // namespace

void noteInterrupts (bool isWorker)
{
    secondsLeft = static_cast<std::sig_atomic_t> (isWorker ? workersGrace : grace);
    onSignal (SIGALRM, giveUp, 0);

    for (const auto signal : { SIGINT, SIGTERM, SIGHUP })
        onSignal (signal, noteInterrupt, isWorker ? 0 : static_cast<int> (SA_RESETHAND));
}

bool interrupted() noexcept { return interruptNoted != 0; }

// Without a name the framework would try the first display there is; this one is none.
void leaveDisplayAlone()
{
    setenv ("DISPLAY", "none", 1);
    unsetenv ("WAYLAND_DISPLAY");
}
} // namespace tarvelline::render
