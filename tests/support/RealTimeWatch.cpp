// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeWatch.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <sys/prctl.h>
#include <ucontext.h>
#include <unistd.h>

namespace tarvelline::test
{
namespace
{
thread_local bool armed = false;
thread_local RealTimeReport report;

[[maybe_unused]] void note (int RealTimeReport::*count) noexcept
{
    if (armed)
        ++(report.*count);
}

#if TARVELLINE_REAL_TIME_WATCH && defined(__x86_64__) && defined(PR_SET_SYSCALL_USER_DISPATCH)
thread_local volatile char gate =
    SYSCALL_DISPATCH_FILTER_ALLOW; // read by the kernel at each of the thread's system calls

/** Counts the first system call, lets all further ones pass, and makes this one in the place of the thread. */
void onSystemCall (int, siginfo_t*, void* context)
{
    gate = SYSCALL_DISPATCH_FILTER_ALLOW;
    ++report.systemCalls;
    auto& registers = static_cast<ucontext_t*> (context)->uc_mcontext.gregs;
    const auto result = syscall (registers[REG_RAX], registers[REG_RDI], registers[REG_RSI], registers[REG_RDX],
                                 registers[REG_R10], registers[REG_R8], registers[REG_R9]);
    registers[REG_RAX] = result == -1 ? -errno : result;
}

bool watchSystemCalls (bool on)
{
    struct sigaction action
    {
    };
    action.sa_sigaction = onSystemCall;
    action.sa_flags = SA_SIGINFO;
    sigaction (SIGSYS, &action, nullptr);
    return prctl (PR_SET_SYSCALL_USER_DISPATCH, on ? PR_SYS_DISPATCH_ON : PR_SYS_DISPATCH_OFF, 0, 0,
                  on ? &gate : nullptr)
           == 0;
}

void closeGate() { gate = SYSCALL_DISPATCH_FILTER_BLOCK; }
void openGate() { gate = SYSCALL_DISPATCH_FILTER_ALLOW; }
#else
bool watchSystemCalls (bool) { return false; }
void closeGate() {}
void openGate() {}
#endif
} // namespace

bool seesSystemCalls() { return watchSystemCalls (true) && watchSystemCalls (false); }

RealTimeReport watchRealTime (const std::function<void()>& call)
{
    watchSystemCalls (true);
    report = {};
    armed = true;
    closeGate();
    call();
    openGate();
    armed = false;
    watchSystemCalls (false);
    return report;
}
} // namespace tarvelline::test

#if TARVELLINE_REAL_TIME_WATCH

using tarvelline::test::note;
using tarvelline::test::RealTimeReport;

// The C library's own allocator, under the names by which it calls itself.
extern "C" void* __libc_malloc (std::size_t);
extern "C" void* __libc_calloc (std::size_t, std::size_t);
extern "C" void* __libc_realloc (void*, std::size_t);
extern "C" void* __libc_memalign (std::size_t, std::size_t);
extern "C" void __libc_free (void*);

    // An allocator that counts and hands on.
    #define WATCHED_ALLOCATOR(name, parameters, arguments) \
        extern "C" void* name parameters                   \
        {                                                  \
            note (&RealTimeReport::allocations);           \
            return __libc_##name arguments;                \
        }

WATCHED_ALLOCATOR (malloc, (std::size_t size), (size))
WATCHED_ALLOCATOR (calloc, (std::size_t count, std::size_t size), (count, size))
WATCHED_ALLOCATOR (realloc, (void* block, std::size_t size), (block, size))
WATCHED_ALLOCATOR (memalign, (std::size_t alignment, std::size_t size), (alignment, size))

extern "C" void* aligned_alloc (std::size_t alignment, std::size_t size) { return memalign (alignment, size); }

extern "C" void free (void* block)
{
    // Freeing nothing does nothing: no lock is taken.
    if (block != nullptr)
        note (&RealTimeReport::allocations);

    __libc_free (block);
}

    // A lock function that counts and hands on to the C library's.
    #define WATCHED_LOCK(name, parameters, arguments)                                                 \
        extern "C" int name parameters                                                                \
        {                                                                                             \
            note (&RealTimeReport::locks);                                                            \
            static const auto next = reinterpret_cast<int (*) parameters> (dlsym (RTLD_NEXT, #name)); \
            return next arguments;                                                                    \
        }

// clang-format off
WATCHED_LOCK (pthread_mutex_lock, (pthread_mutex_t* mutex) noexcept, (mutex))
WATCHED_LOCK (pthread_mutex_trylock, (pthread_mutex_t* mutex) noexcept, (mutex))
WATCHED_LOCK (pthread_rwlock_rdlock, (pthread_rwlock_t* lock) noexcept, (lock))
WATCHED_LOCK (pthread_rwlock_wrlock, (pthread_rwlock_t* lock) noexcept, (lock))
WATCHED_LOCK (pthread_cond_signal, (pthread_cond_t* condition) noexcept, (condition))
WATCHED_LOCK (pthread_cond_broadcast, (pthread_cond_t* condition) noexcept, (condition))
WATCHED_LOCK (sem_wait, (sem_t* semaphore), (semaphore))
WATCHED_LOCK (sem_post, (sem_t* semaphore) noexcept, (semaphore))
// clang-format on

#endif
