// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Terminal.h"

#include "render/options/Errors.h"
#include "render/running/StopEventWindows.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <windows.h>

namespace tarvelline::render
{
namespace
{
// To clear up in; a worker's are over before those of whoever waits for it.
constexpr std::chrono::seconds workersGrace (10), grace (15);

std::atomic<bool> interruptNoted { false }, isEndedByTheNext { true };
HANDLE mainThread = nullptr;
std::chrono::seconds timeLeft {};

// Ends every wait, as a signal does elsewhere, and at last the job that is stuck.
void hurry()
{
    constexpr std::chrono::milliseconds step (100);

    for (std::chrono::milliseconds left (timeLeft); left.count() > 0; left -= step)
    {
        CancelSynchronousIo (mainThread);
        std::this_thread::sleep_for (step);
    }

    TerminateProcess (GetCurrentProcess(), exitStopped);
}

/** @returns whether it is the first */
bool noteInterrupt()
{
    const bool isFirst = ! interruptNoted.exchange (true);

    if (isFirst)
        std::thread (hurry).detach();

    return isFirst;
}

// On a thread of its own.
BOOL WINAPI onControl (DWORD event)
{
    const bool isFirst = noteInterrupt();

    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        Sleep (INFINITE); // the console is closed, or the session: this program ends as soon as this returns

    return isFirst || ! isEndedByTheNext ? TRUE : FALSE;
}

void awaitStop()
{
    WaitForSingleObject (CreateEventW (nullptr, TRUE, FALSE, stopEventOf (GetCurrentProcessId()).c_str()), INFINITE);
    noteInterrupt();
}
} // namespace

void noteInterrupts (bool isWorker)
{
    isEndedByTheNext = ! isWorker;
    timeLeft = isWorker ? workersGrace : grace;
    mainThread = OpenThread (THREAD_TERMINATE, FALSE, GetCurrentThreadId()); // the right that cancelling asks for
    SetConsoleCtrlHandler (onControl, TRUE);

    if (isWorker)
        std::thread (awaitStop).detach();
}

bool interrupted() noexcept { return interruptNoted; }

// There is none but the user's.
void leaveDisplayAlone() {}
} // namespace tarvelline::render
