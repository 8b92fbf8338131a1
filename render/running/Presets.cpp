// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Presets.h"

#include "render/options/Errors.h"
#include "render/running/Places.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
constexpr auto ownFolder = "Vorntaal/Tarvelline"; // as VST3 lays presets out: maker, plug-in

bool haveOneName (const juce::File& a, const juce::File& b)
{
    return a.getFileNameWithoutExtension().equalsIgnoreCase (b.getFileNameWithoutExtension());
}
} // namespace

std::vector<juce::File> findPresets (const juce::File& module)
{
    std::vector<juce::File> presets;

    for (const auto& folder : presetFolders (module))
        for (const auto& file :
             folder.getChildFile (ownFolder).findChildFiles (juce::File::findFiles, false, "*.vstpreset"))
            if (std::none_of (presets.begin(), presets.end(), [&] (const auto& p) { return haveOneName (p, file); }))
                presets.push_back (file);

    std::sort (presets.begin(), presets.end(),
               [] (const auto& a, const auto& b) { return a.getFileName().compareNatural (b.getFileName()) < 0; });
    return presets;
}

juce::File presetNamed (const juce::String& name, const juce::File& module)
{
    for (const auto& preset : findPresets (module))
        if (preset.getFileNameWithoutExtension().equalsIgnoreCase (name))
            return preset;

    throw UserError ("--preset: there is no preset \"" + name + "\"; tarvelline-render --preset-list lists them");
}
} // namespace tarvelline::render
