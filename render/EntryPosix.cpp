// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/Main.h"

int main (int count, char** values)
{
    juce::StringArray arguments;

    for (int i = 1; i < count; ++i)
        arguments.add (juce::String::fromUTF8 (values[i]));

    return tarvelline::render::runProgram (arguments);
}
