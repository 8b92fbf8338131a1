// SPDX-License-Identifier: GPL-3.0-or-later
// Sets this program beside its peers on the machine at hand, and its cost beside the work that it does.
#include "bench/CompareShifters.h"
#include "tests/support/InstructionSets.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <algorithm>
#include <cstdio>
#include <string>

/** Usage: compare DIRECTORY [SET]. cost.csv and cost.png go into the directory. With the name of an instruction set, such as
    AVX2 or SSE4, this program is held to it, as it would run on a processor that has no better one. */
int main (int argc, char** argv)
{
    using namespace tarvelline;
    const auto sets = test::instructionSets();
    const std::string directory = argc > 1 ? argv[1] : "", set = argc > 2 ? argv[2] : sets.front();

    if (argc < 2 || argc > 3 || std::find (sets.begin(), sets.end(), set) == sets.end())
    {
        std::fprintf (stderr, "usage: compare DIRECTORY [SET]\nSET is one of:");

        for (const auto& name : sets)
            std::fprintf (stderr, " %s", name.c_str());

        std::fprintf (stderr, "\n");
        return 2;
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    bench::compareTransforms(); // on every set

    const test::OnInstructionSet held (set);
    std::printf ("Tarvelline held to %s\n", set.c_str());
    bench::compareShifters();
    bench::sweepCosts (directory);
    std::printf ("Cost over voices, shift, rate and block size: %s/cost.csv, cost.png\n", directory.c_str());
    return 0;
}
