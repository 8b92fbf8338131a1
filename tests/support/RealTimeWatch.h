// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    #define TARVELLINE_REAL_TIME_WATCH \
        0 // a sanitizer has its own allocator and locks in the same place: nothing is seen
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
};

/** Makes a call and watches its thread meanwhile. The program that links this has its allocator and its lock functions
    replaced by ones that count and hand on. Watches do not nest. A breakpoint in note() shows who violates. */
RealTimeReport watchRealTime (const std::function<void()>& call);
} // namespace tarvelline::test
