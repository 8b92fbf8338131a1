// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>

#ifndef __has_feature // a word of clang's
    #define __has_feature(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || __has_feature(realtime_sanitizer)
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
    int systemCalls = 0; // 1 if there was any
};

/** Makes a call and watches its thread meanwhile. The program that links this has its allocator and its lock functions
    replaced by ones that count and hand on. Watches do not nest. A breakpoint in note() shows who violates. */
RealTimeReport watchRealTime (const std::function<void()>& call);

/** Whether this machine's kernel can tell of system calls (Linux 5.11 on x86-64). */
bool seesSystemCalls();
} // namespace tarvelline::test
