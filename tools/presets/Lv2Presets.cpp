// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/TarvellineAudioProcessor.h"
#include "tools/presets/PresetFiles.h"

#include <stdexcept>

namespace tarvelline::presets
{
namespace
{
constexpr auto headline = "# Factory presets\n"; // in the manifest, after all that the framework has written

constexpr auto prefixes = "@prefix pset: <http://lv2plug.in/ns/ext/presets#> .\n"
                          "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
                          "@prefix state: <http://lv2plug.in/ns/ext/state#> .\n";

juce::String uriOf (const Preset& preset)
{
    return "<" JucePlugin_LV2URI "/presets/" + preset.name.toLowerCase().replaceCharacter (' ', '-') + ">";
}

/** As the framework's LV2 wrapper keeps it. */
juce::String stateOf (const Preset& preset)
{
    TarvellineAudioProcessor processor;
    juce::MemoryBlock state;

    // In the order of the table, ranges first: a change of range moves the wheel.
    for (std::size_t i = 0; i < preset.values.size(); ++i)
        processor.getParameters()[static_cast<int> (i)]->setValueNotifyingHost (preset.values[i]);

    processor.getStateInformation (state);
    return state.toBase64Encoding();
}

void write (const juce::File& file, const juce::String& text)
{
    if (! file.replaceWithText (text, false, false, "\n"))
        throw std::runtime_error (("cannot write " + file.getFullPathName()).toStdString());
}
} // namespace

void writeLv2Presets (const std::vector<Preset>& table, const juce::File& bundle)
{
    const auto manifest = bundle.getChildFile ("manifest.ttl");
    juce::String entries (headline), states (prefixes);

    for (const auto& preset : table)
    {
        entries << uriOf (preset)
                << " a pset:Preset ; lv2:appliesTo <" JucePlugin_LV2URI "> ; rdfs:seeAlso <presets.ttl> .\n";
        states << "\n"
               << uriOf (preset) << " a pset:Preset ;\n\trdfs:label \"" << preset.name << "\" ;\n\tstate:state [ <"
               << JucePlugin_LV2URI ":StateString> \"" << stateOf (preset) << "\" ] .\n";
    }

    write (bundle.getChildFile ("presets.ttl"), states);
    write (manifest, manifest.loadFileAsString().upToFirstOccurrenceOf (headline, false, false) + entries);
}
} // namespace tarvelline::presets
