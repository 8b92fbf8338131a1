// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace tarvelline
{
const std::array<ParameterRow, 15> parameterTable { {
    { parameterId::mainRange, "Pitch Range", 5.0f, 3.0f, "range of the pitch wheel" },
    { parameterId::timbRange, "Timbre Range", 5.0f, 3.0f, "range of the timbre wheel" },
    { parameterId::mainWheelPar, "Pitch", 1.0f, 0.5f, "pitch wheel, 0.5 is the centre" },
    { parameterId::mainGravityPar, "Pitch Gravity", 1.0f, 0.5f, "pull of the moving pitch towards the wheel" },
    { parameterId::mainInertiaPar, "Pitch Inertia", 1.0f, 0.5f, "acceleration of the moving pitch" },
    { parameterId::mainSmoothPar, "Pitch Smooth", 1.0f, 0.0f, "slowness of the pitch wheel" },
    { parameterId::mainSnap, "Pitch Snap", 1.0f, 1.0f, "wheel steps in the editor, no effect here" },
    { parameterId::timbWheelPar, "Timbre", 1.0f, 0.5f, "timbre wheel, 0.5 is the centre" },
    { parameterId::timbGravityPar, "Timbre Gravity", 1.0f, 0.5f, "pull of the moving timbre towards the wheel" },
    { parameterId::timbInertiaPar, "Timbre Inertia", 1.0f, 0.5f, "acceleration of the moving timbre" },
    { parameterId::timbSmoothPar, "Timbre Smooth", 1.0f, 0.0f, "slowness of the timbre wheel" },
    { parameterId::timbSnap, "Timbre Snap", 1.0f, 1.0f, "wheel steps in the editor, no effect here" },
    { parameterId::mixerPar, "Mixer", 1.0f, 1.0f, "share of the shifted sound, the rest is the input" },
    { parameterId::toggleSize, "Toggle Size", 1.0f, 0.0f, "the timbre wheel is in use unless 0" },
    { parameterId::midiOptions, "Toggle MIDI", 1.0f, 1.0f, "notes: 0 plays voices, anything else transposes" },
} };

namespace
{
/** A parameter whose name stays its own in a host's narrow display: cut after eight letters two of them are "Timbre S". */
class Parameter : public juce::AudioParameterFloat
{
public:
    using juce::AudioParameterFloat::AudioParameterFloat;

    juce::String getName (int maximumLength) const override
    {
        const auto space = name.indexOfChar (' ');
        const auto abbreviated = name.length() > maximumLength && space > 0;
        return (abbreviated ? name.substring (0, 1) + name.substring (space) : name).substring (0, maximumLength);
    }
};
} // namespace

int parameterIndex (juce::StringRef id) noexcept
{
    const auto row = std::find_if (parameterTable.begin(), parameterTable.end(),
                                   [id] (const ParameterRow& other) { return id == juce::StringRef (other.id); });
    return row != parameterTable.end() ? static_cast<int> (row - parameterTable.begin()) : -1;
}

double spanForRange (float selectorValue) noexcept
{
    constexpr auto lastEntry = static_cast<float> (wheelRangeTable.size() - 1);
    const auto held = selectorValue > 0.0f ? std::min (selectorValue, lastEntry) : 0.0f; // a NaN is not above 0
    return wheelRangeTable[static_cast<std::size_t> (held)];
}

void createParameters (juce::AudioProcessorValueTreeState& parameters)
{
    for (const auto& row : parameterTable)
        parameters.createAndAddParameter (
            std::make_unique<Parameter> (juce::ParameterID { row.id, 1 }, row.name,
                                         juce::NormalisableRange<float> (0.0f, row.rangeEnd), row.defaultValue));
}

BlockParameters::BlockParameters (const juce::AudioProcessorValueTreeState& parameters)
{
    const auto find = [&parameters] (juce::StringRef id)
    { return static_cast<const juce::AudioParameterFloat*> (parameters.getParameter (id)); };

    mainWheel = find (parameterId::mainWheelPar);
    timbWheel = find (parameterId::timbWheelPar);
    mixer = find (parameterId::mixerPar);
    toggleSize = find (parameterId::toggleSize);
}

float currentValue (const juce::AudioParameterFloat& parameter) noexcept
{
    const auto value = parameter.get();
    return std::isfinite (value) ? value : 0.0f;
}

float currentValue (const juce::AudioProcessorValueTreeState& parameters, juce::StringRef id) noexcept
{
    return currentValue (*static_cast<const juce::AudioParameterFloat*> (parameters.getParameter (id)));
}
} // namespace tarvelline
