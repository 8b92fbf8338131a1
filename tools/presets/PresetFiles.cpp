// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/PresetFiles.h"

#include "render/running/HostedModule.h"

#include <stdexcept>

namespace tarvelline::presets
{
namespace
{
juce::MemoryBlock presetOf (const Preset& preset, const juce::File& module)
{
    std::vector<render::Setting> settings;

    // In the order of the table, ranges first: a change of range moves the wheel.
    for (std::size_t i = 0; i < preset.values.size(); ++i)
        settings.push_back ({ static_cast<int> (i), preset.values[i] });

    render::HostedModule instance (module);
    instance.prepare (44100.0, 2, 512, settings); // a state is the same at every rate
    return instance.getPreset();
}
} // namespace

void writePresetFiles (const std::vector<Preset>& table, const juce::File& module, const juce::File& folder)
{
    for (const auto& preset : table)
    {
        const auto bytes = presetOf (preset, module);
        const auto file = folder.getChildFile (preset.name + ".vstpreset");

        if (! folder.createDirectory() || ! file.replaceWithData (bytes.getData(), bytes.getSize()))
            throw std::runtime_error (("cannot write " + file.getFullPathName()).toStdString());
    }
}
} // namespace tarvelline::presets
