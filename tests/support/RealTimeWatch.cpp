// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/RealTimeWatch.h"

#include <array>
#include <cerrno>
#include <cstdlib>

#include <dlfcn.h>
#include <execinfo.h>
#include <pthread.h>
#include <semaphore.h>

namespace tarvelline::test
{
namespace
{
struct ThreadWatch
{
    bool armed = false;
    int allocations = 0, locks = 0;
    std::array<void*, 48> frames {}; // of the first violation
    int frameCount = 0;
};

thread_local ThreadWatch threadWatch;

[[maybe_unused]] void note (int ThreadWatch::*count) noexcept
{
    if (! threadWatch.armed)
        return;

    threadWatch.armed = false; // taking the backtrace may itself allocate

    if (threadWatch.allocations + threadWatch.locks == 0)
        threadWatch.frameCount = backtrace (threadWatch.frames.data(), static_cast<int> (threadWatch.frames.size()));

    ++(threadWatch.*count);
    threadWatch.armed = true;
}
} // namespace

RealTimeWatch::RealTimeWatch()
{
    threadWatch = {};
    threadWatch.armed = true;
}

RealTimeWatch::~RealTimeWatch() { threadWatch.armed = false; }

RealTimeReport RealTimeWatch::finish()
{
    threadWatch.armed = false;
    RealTimeReport report { threadWatch.allocations, threadWatch.locks, {} };
    const auto names = backtrace_symbols (threadWatch.frames.data(), threadWatch.frameCount);

    for (int i = 0; i < threadWatch.frameCount; ++i)
        report.first += std::string (names[i]) + "\n";

    std::free (names);
    return report;
}
} // namespace tarvelline::test

#if TARVELLINE_REAL_TIME_WATCH

using tarvelline::test::note;
using tarvelline::test::ThreadWatch;

// The C library's own allocator, under the names by which it calls itself.
extern "C" void* __libc_malloc (std::size_t);
extern "C" void* __libc_calloc (std::size_t, std::size_t);
extern "C" void* __libc_realloc (void*, std::size_t);
extern "C" void* __libc_memalign (std::size_t, std::size_t);
extern "C" void __libc_free (void*);

extern "C" void* malloc (std::size_t size)
{
    note (&ThreadWatch::allocations);
    return __libc_malloc (size);
}

extern "C" void* calloc (std::size_t count, std::size_t size)
{
    note (&ThreadWatch::allocations);
    return __libc_calloc (count, size);
}

extern "C" void* realloc (void* block, std::size_t size)
{
    note (&ThreadWatch::allocations);
    return __libc_realloc (block, size);
}

extern "C" void* memalign (std::size_t alignment, std::size_t size)
{
    note (&ThreadWatch::allocations);
    return __libc_memalign (alignment, size);
}

extern "C" void* aligned_alloc (std::size_t alignment, std::size_t size) { return memalign (alignment, size); }

extern "C" int posix_memalign (void** block, std::size_t alignment, std::size_t size)
{
    *block = memalign (alignment, size);
    return *block != nullptr ? 0 : ENOMEM;
}

extern "C" void free (void* block)
{
    // Freeing nothing does nothing: no lock is taken.
    if (block != nullptr)
        note (&ThreadWatch::allocations);

    __libc_free (block);
}

    // A lock function that counts and hands on to the C library's.
    #define WATCHED_LOCK(name, parameters, arguments)                                                 \
        extern "C" int name parameters                                                                \
        {                                                                                             \
            note (&ThreadWatch::locks);                                                               \
            static const auto next = reinterpret_cast<int (*) parameters> (dlsym (RTLD_NEXT, #name)); \
            return next arguments;                                                                    \
        }

// clang-format off
WATCHED_LOCK (pthread_mutex_lock, (pthread_mutex_t* mutex) noexcept, (mutex))
WATCHED_LOCK (pthread_mutex_trylock, (pthread_mutex_t* mutex) noexcept, (mutex))
WATCHED_LOCK (pthread_rwlock_rdlock, (pthread_rwlock_t* lock) noexcept, (lock))
WATCHED_LOCK (pthread_rwlock_wrlock, (pthread_rwlock_t* lock) noexcept, (lock))
WATCHED_LOCK (pthread_cond_wait, (pthread_cond_t* condition, pthread_mutex_t* mutex), (condition, mutex))
WATCHED_LOCK (pthread_cond_timedwait, (pthread_cond_t* condition, pthread_mutex_t* mutex, const timespec* time), (condition, mutex, time))
WATCHED_LOCK (pthread_cond_signal, (pthread_cond_t* condition) noexcept, (condition))
WATCHED_LOCK (pthread_cond_broadcast, (pthread_cond_t* condition) noexcept, (condition))
WATCHED_LOCK (sem_wait, (sem_t* semaphore), (semaphore))
WATCHED_LOCK (sem_post, (sem_t* semaphore) noexcept, (semaphore))
// clang-format on

#endif
