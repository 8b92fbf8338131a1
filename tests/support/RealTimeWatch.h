// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    #define TARVELLINE_REAL_TIME_WATCH 0 // a sanitizer has its own allocator and locks in the same place
#else
    #define TARVELLINE_REAL_TIME_WATCH 1
#endif

namespace tarvelline::test
{
/** What a watched call did that an audio thread must not. */
struct RealTimeReport
{
    int allocations = 0; // calls of malloc and its kin, free among them; operator new goes through them
    int locks = 0;       // mutexes, read-write locks, condition variables and semaphores
    std::string first;   // backtrace of the first violation
};

/** Watches the calling thread from construction to finish(). The program that links this has its allocator and its lock
    functions replaced by ones that count and hand on. Watches do not nest. */
class RealTimeWatch
{
public:
    RealTimeWatch();
    ~RealTimeWatch();
    RealTimeWatch (const RealTimeWatch&) = delete;
    RealTimeWatch& operator= (const RealTimeWatch&) = delete;

    RealTimeReport finish();
};

template <typename Call>
RealTimeReport watchRealTime (Call&& call)
{
    RealTimeWatch watch;
    call();
    return watch.finish();
}
} // namespace tarvelline::test
