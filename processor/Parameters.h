// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <array>

namespace tarvelline
{
/** One host parameter: a plain float from 0 to `rangeEnd`, continuous, linear, without unit. */
struct ParameterRow
{
    const char* id;
    const char* name;
    float rangeEnd;
    float defaultValue;
    const char* meaning; // for who sets it by its ID
};

/** Parameter IDs, as the host, the saved state and the editor's attachments know them. */
namespace parameterId
{
inline constexpr auto mainRange = "mainRange";
inline constexpr auto timbRange = "timbRange";
inline constexpr auto mainWheelPar = "mainWheelPar";
inline constexpr auto mainGravityPar = "mainGravityPar";
inline constexpr auto mainInertiaPar = "mainInertiaPar";
inline constexpr auto mainSmoothPar = "mainSmoothPar";
inline constexpr auto mainSnap = "mainSnap";
inline constexpr auto timbWheelPar = "timbWheelPar";
inline constexpr auto timbGravityPar = "timbGravityPar";
inline constexpr auto timbInertiaPar = "timbInertiaPar";
inline constexpr auto timbSmoothPar = "timbSmoothPar";
inline constexpr auto timbSnap = "timbSnap";
inline constexpr auto mixerPar = "mixerPar";
inline constexpr auto toggleSize = "toggleSize";
inline constexpr auto midiOptions = "midiOptions";
} // namespace parameterId

/** All parameters, in the order in which the host lists them. */
extern const std::array<ParameterRow, 15> parameterTable;

/** The place in parameterTable of the parameter with an ID; -1 if there is none. */
int parameterIndex (juce::StringRef id) noexcept;

/** Full travel of a wheel in semitones, end to end, for each value of a range selector. */
inline constexpr std::array<double, 6> wheelRangeTable { 2.0, 4.0, 6.0, 12.0, 24.0, 48.0 };

/** The span that a range selector's value chooses: truncated, not rounded (4.99 is entry 4), and held to the table. */
double spanForRange (float selectorValue) noexcept;

/** Adds every row of the table to `parameters`, in order. */
void createParameters (juce::AudioProcessorValueTreeState& parameters);

/** The parameters that every block reads, found once: a look-up by name costs as much as many samples. */
struct BlockParameters
{
    BlockParameters() = default;
    explicit BlockParameters (const juce::AudioProcessorValueTreeState&);

    const juce::AudioParameterFloat *mainWheel = nullptr, *timbWheel = nullptr, *mixer = nullptr, *toggleSize = nullptr;
};

/** The parameter's value as it is now, in its own units; 0 if a host has stored something that is not finite.

    Reads the parameter object itself: the tree's raw value is a copy that a plain setValue(), as a pitch-bend does it,
    leaves untouched. Any thread; real-time safe. */
float currentValue (const juce::AudioParameterFloat&) noexcept;

/** The same by name. */
float currentValue (const juce::AudioProcessorValueTreeState& parameters, juce::StringRef id) noexcept;
} // namespace tarvelline
