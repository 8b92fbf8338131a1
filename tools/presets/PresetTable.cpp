// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/PresetTable.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace tarvelline::presets
{
namespace
{
std::runtime_error fault (const juce::String& preset, const juce::String& what)
{
    return std::runtime_error ((preset + ": " + what).toStdString());
}

/** A preset on its way from the table's words to normalised values. */
class Reader
{
public:
    Reader (const juce::NamedValueSet& written, Preset& destination) : preset (destination)
    {
        for (const auto& [key, value] : written)
            if (key == juce::Identifier ("name"))
                preset.name = value.toString();

        for (std::size_t i = 0; i < parameterTable.size(); ++i)
            preset.values[i] = parameterTable[i].defaultValue / parameterTable[i].rangeEnd;
    }

    void read (const juce::String& key, const juce::var& value)
    {
        using namespace parameterId;

        if (key == "play")
            preset.play = value.toString();
        else if (key == "hear")
            preset.hear = value.toString();
        else if (key == "pitch")
            readWheel (value, pitchWheel);
        else if (key == "timbre")
            readTimbre (value);
        else if (key == "mix")
            preset.value (mixerPar) = amount (key, value);
        else if (key == "midi")
            preset.value (midiOptions) = oneOf (key, value, "Single", "Multi");
        else if (key != "name")
            throw fault (preset.name, "\"" + key + "\" is not a word of the table");
    }

private:
    void readTimbre (const juce::var& section)
    {
        readWheel (section, timbreWheel);
        preset.value (parameterId::toggleSize) = 1.0f;
    }

    void readWheel (const juce::var& section, const WheelParameters& ids)
    {
        const double range = section["range"], shift = section["shift"];
        const auto entry = std::find (wheelRangeTable.begin(), wheelRangeTable.end(), range);

        if (entry == wheelRangeTable.end())
            throw fault (preset.name, "no wheel has a range of " + section["range"].toString());

        if (std::abs (shift) > range / 2.0)
            throw fault (preset.name, "the range does not reach a shift of " + section["shift"].toString());

        const auto lastEntry = static_cast<float> (wheelRangeTable.size() - 1);
        preset.value (ids.range) = static_cast<float> (entry - wheelRangeTable.begin()) / lastEntry;
        preset.value (ids.wheel) = static_cast<float> (shift / range + 0.5);
        preset.value (ids.snap) = oneOf ("snap", section["snap"], "on", "off");
        preset.value (ids.gravity) = amount ("gravity", section["gravity"]);
        preset.value (ids.inertia) = amount ("inertia", section["inertia"]);
        preset.value (ids.smooth) = amount ("smooth", section["smooth"]);
    }

    float amount (const juce::String& key, const juce::var& value) const
    {
        if (! (value.isDouble() || value.isInt())
            || ! juce::isPositiveAndNotGreaterThan (static_cast<double> (value), 1.0))
            throw fault (preset.name, key + " is to be a number from 0 to 1");

        return static_cast<float> (value);
    }

    float oneOf (const juce::String& key, const juce::var& value, const char* on, const char* off) const
    {
        if (value != juce::var (on) && value != juce::var (off))
            throw fault (preset.name, key + " is to be \"" + on + "\" or \"" + off + "\"");

        return value == juce::var (on) ? 1.0f : 0.0f;
    }

    Preset& preset;
};
} // namespace

float& Preset::value (const char* id) { return values[static_cast<std::size_t> (parameterIndex (id))]; }

float Preset::value (const char* id) const { return values[static_cast<std::size_t> (parameterIndex (id))]; }

std::vector<Preset> readPresetTable (const juce::File& file)
{
    juce::var table;
    const auto result = juce::JSON::parse (file.loadFileAsString(), table);

    if (result.failed() || ! table.isArray())
        throw fault (file.getFullPathName(), result.failed() ? result.getErrorMessage() : "no list of presets");

    std::vector<Preset> presets;

    for (const auto& entry : *table.getArray())
    {
        if (! entry.isObject() || ! entry.hasProperty ("name"))
            throw fault (file.getFullPathName(), "a preset without a name");

        const auto& written = entry.getDynamicObject()->getProperties();
        Reader reader (written, presets.emplace_back());

        for (const auto& [key, value] : written)
            reader.read (key.toString(), value);
    }

    return presets;
}
} // namespace tarvelline::presets
