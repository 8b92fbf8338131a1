// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/Parameters.h"

#include <juce_core/juce_core.h>

#include <array>
#include <vector>

namespace tarvelline::presets
{
/** The parameters of one wheel, by their IDs. */
struct WheelParameters
{
    const char *range, *wheel, *snap, *gravity, *inertia, *smooth;
};

inline constexpr WheelParameters pitchWheel { parameterId::mainRange,      parameterId::mainWheelPar,
                                              parameterId::mainSnap,       parameterId::mainGravityPar,
                                              parameterId::mainInertiaPar, parameterId::mainSmoothPar };
inline constexpr WheelParameters timbreWheel { parameterId::timbRange,      parameterId::timbWheelPar,
                                               parameterId::timbSnap,       parameterId::timbGravityPar,
                                               parameterId::timbInertiaPar, parameterId::timbSmoothPar };

/** One factory preset. */
struct Preset
{
    juce::String name;                               // of the file too
    juce::String play, hear;                         // what to play into it, and what comes of that
    std::array<float, parameterTable.size()> values; // normalised, in the order of parameterTable

    /** The value of a parameter in parameterTable. */
    float& value (const char* id);
    float value (const char* id) const;
};

/** Reads resources/presets.json, in which semitones and switches stand as the window shows them. What a preset does not name
    keeps the plug-in's default; a preset with a "timbre" section puts the timbre wheel to use.
    Throws std::runtime_error, naming the preset, for an unknown word or a value out of range. */
std::vector<Preset> readPresetTable (const juce::File&);
} // namespace tarvelline::presets
