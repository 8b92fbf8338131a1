// SPDX-License-Identifier: GPL-3.0-or-later
#include "fuzz/Require.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <cstdlib>

namespace tarvelline::fuzz
{
void require (bool condition, const char* promise)
{
    if (condition)
        return;

    std::fprintf (stderr, "broken promise: %s\n", promise);
    std::abort(); // which the fuzzer reports, keeping the input
}
} // namespace tarvelline::fuzz

extern "C" int LLVMFuzzerInitialize (int*, char***)
{
    juce::DeletedAtShutdown::
        deleteAll(); // brings its list into being first, so that it goes after the next line's object
    static const juce::ScopedJuceInitialiser_GUI framework; // the parameters' timer wants a message thread
    return 0;
}
