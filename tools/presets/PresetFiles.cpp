// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/PresetFiles.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <stdexcept>

namespace tarvelline::presets
{
namespace
{
/** Asks a module for its state as a preset file: its class and what it saves. */
struct PresetSaver : juce::ExtensionsVisitor
{
    void visitVST3Client (const VST3Client& client) override { bytes = client.getPreset(); }
    juce::MemoryBlock bytes;
};

std::unique_ptr<juce::AudioPluginInstance> load (const juce::File& module)
{
    juce::VST3PluginFormat format;
    juce::OwnedArray<juce::PluginDescription> found;
    juce::String reason = "no plug-in in it";
    format.findAllTypesForFile (found, module.getFullPathName());
    std::unique_ptr<juce::AudioPluginInstance> instance;

    if (! found.isEmpty())
        instance = format.createInstanceFromDescription (*found[0], 44100.0, 512, reason);

    if (instance == nullptr)
        throw std::runtime_error ((module.getFullPathName() + ": " + reason).toStdString());

    return instance;
}

juce::MemoryBlock presetOf (const Preset& preset, const juce::File& module)
{
    const auto instance = load (module);
    const auto& parameters = instance->getParameters();

    // In the order of the table, ranges first: a change of range moves the wheel.
    for (std::size_t i = 0; i < parameterTable.size(); ++i)
        parameters[static_cast<int> (i)]->setValue (preset.values[i]);

    PresetSaver saver;
    instance->getExtensions (saver);
    return saver.bytes;
}
} // namespace

void writePresetFiles (const std::vector<Preset>& table, const juce::File& module, const juce::File& folder)
{
    for (const auto& preset : table)
    {
        const auto bytes = presetOf (preset, module);
        const auto file = folder.getChildFile (preset.name + ".vstpreset");

        if (bytes.isEmpty() || ! folder.createDirectory() || ! file.replaceWithData (bytes.getData(), bytes.getSize()))
            throw std::runtime_error (("cannot write " + file.getFullPathName()).toStdString());
    }
}
} // namespace tarvelline::presets
