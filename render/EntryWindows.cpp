// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Main.h"

int _dowildcard = -1; // the C library's: no shell here makes names of *.wav, so that it is to do it

// The command line in Unicode.
int wmain (int count, wchar_t** values)
{
    juce::StringArray arguments;

    for (int i = 1; i < count; ++i)
        arguments.add (values[i]);

    return tarvelline::render::runProgram (arguments);
}
