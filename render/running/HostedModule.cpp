// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/HostedModule.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/running/Places.h"
#include "render/running/Vst3Client.h"

namespace tarvelline::render
{
HostedModule::HostedModule (const juce::File& file)
{
    juce::OwnedArray<juce::PluginDescription> found;
    format.findAllTypesForFile (found, fileToOpen (file).getFullPathName());

    if (found.isEmpty() || found[0]->name != "Tarvelline")
        throw UserError ("--module: " + file.getFullPathName() + " is not the Tarvelline plug-in"
                         + (found.isEmpty() ? juce::String() : " but " + found[0]->name));

    constexpr double anyRate = 44100.0; // prepare() comes with the right one
    constexpr int anyBlock = 512;
    juce::String reason;
    instance = format.createInstanceFromDescription (*found[0], anyRate, anyBlock, reason);

    if (instance == nullptr)
        throw UserError ("cannot start the plug-in " + file.getFullPathName() + ": " + reason);

    verifyParameters (file);
}

// A host sees no parameter IDs, only the order, which is the table's.
void HostedModule::verifyParameters (const juce::File& file) const
{
    const auto& parameters = instance->getParameters();

    for (std::size_t i = 0; i < parameterTable.size(); ++i)
    {
        const auto* parameter = parameters[static_cast<int> (i)];

        if (parameter == nullptr || parameter->getName (100) != parameterTable[i].name)
            throw UserError ("the plug-in " + file.getFullPathName()
                             + " has other parameters than this program; parameter " + juce::String (i + 1)
                             + " should be \"" + parameterTable[i].name + "\"");
    }
}

void HostedModule::prepare (double sampleRate, int channels, int largestBlock, const std::vector<Setting>& settings)
{
    const auto layout = juce::AudioChannelSet::canonicalChannelSet (channels);

    if (! instance->setBusesLayout ({ { layout }, { layout } }))
        throw UserError ("the plug-in does not take " + juce::String (channels) + " channels");

    instance->setNonRealtime (true);
    instance->prepareToPlay (sampleRate, largestBlock);

    // A block without samples hands over the settings. Starting again then begins at rest with them, and tells the latency,
    // which a module knows only once it has been active.
    juce::AudioBuffer<float> none (channels, 0);
    process (none, { 0, 0, settings, {} });
    instance->releaseResources();
    instance->prepareToPlay (sampleRate, largestBlock);
}

juce::MemoryBlock HostedModule::getPreset() const
{
    juce::MemoryBlock preset;
    withVst3Client (*instance, [&] (auto& client) { preset = client.getPreset(); });

    if (preset.isEmpty())
        throw UserError ("the plug-in does not tell its state");

    return preset;
}

void HostedModule::apply (const std::vector<Setting>& settings)
{
    const auto& parameters = instance->getParameters();

    for (const auto& setting : settings)
        parameters[setting.parameter]->setValue (setting.value);
}

void HostedModule::process (juce::AudioBuffer<float>& buffer, const Block& block)
{
    apply (block.settings);
    auto midi = block.midi;
    instance->processBlock (buffer, midi);
}
} // namespace tarvelline::render
