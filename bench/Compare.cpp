// SPDX-License-Identifier: GPL-3.0-or-later
// Sets this program beside its peers on the machine at hand, and its cost beside the work that it does.
#include "bench/CompareShifters.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdio>

/** Usage: compare DIRECTORY, where cost.csv and cost.png go. */
int main (int argc, char** argv)
{
    if (argc != 2)
    {
        std::fprintf (stderr, "usage: compare DIRECTORY\n");
        return 2;
    }

    const juce::ScopedJuceInitialiser_GUI framework;
    tarvelline::bench::compareShifters();
    tarvelline::bench::compareTransforms();
    tarvelline::bench::sweepCosts (argv[1]);
    std::printf ("Cost over voices, shift, rate and block size: %s/cost.csv, cost.png\n", argv[1]);
    return 0;
}
