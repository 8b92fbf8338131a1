// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/** Marks a function that must neither allocate, lock, wait nor call the system, after its parameters and specifiers. The
    real-time sanitizer reports what it and all that it calls do of that; other compilers do not know the word. */
#if defined(__clang__) && __clang_major__ >= 20
    #define TARVELLINE_REAL_TIME [[clang::nonblocking]]
#else
    #define TARVELLINE_REAL_TIME
#endif
