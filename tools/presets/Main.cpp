// SPDX-License-Identifier: GPL-3.0-or-later
// Makes the factory presets from their table:
//   tarvelline_presets TABLE.json MODULE.vst3 FOLDER PAGE.md [BUNDLE.lv2]
// writes a .vstpreset file of each into FOLDER, the page that describes them, and all of them into the bundle.
#include "tools/presets/PresetFiles.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <stdexcept>

int main (int argc, char** argv)
{
    using namespace tarvelline::presets;

    if (argc != 5 && argc != 6)
    {
        std::fprintf (stderr, "usage: tarvelline_presets TABLE.json MODULE.vst3 FOLDER PAGE.md [BUNDLE.lv2]\n");
        return 2;
    }

    const auto file = [argv] (int i) { return juce::File::getCurrentWorkingDirectory().getChildFile (argv[i]); };

    try
    {
        const juce::ScopedJuceInitialiser_GUI framework;
        const auto table = readPresetTable (file (1));
        writePresetFiles (table, file (2), file (3));

        if (! file (4).replaceWithText (presetPage (table), false, false, "\n"))
            throw std::runtime_error (std::string ("cannot write ") + argv[4]);

        if (argc == 6)
            writeLv2Presets (table, file (5));
    }
    catch (const std::exception& error)
    {
        std::fprintf (stderr, "tarvelline_presets: %s\n", error.what());
        return 2;
    }

    return 0;
}
