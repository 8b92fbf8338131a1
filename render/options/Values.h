// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <optional>
#include <vector>

namespace tarvelline::render
{
/** A parameter, by its index in parameterTable, and the normalised value it is to take. */
struct Setting
{
    int parameter = 0;
    float value = 0.0f;
};

/** One of the two wheels, by the names under which it is known. */
struct Wheel
{
    const char *name, *option; // in tables, and on the command line
    int range, position;       // indices in parameterTable
};

/** The pitch wheel and the timbre wheel. */
const std::vector<Wheel>& wheels();

/** The whole text as a finite number, with an optional sign; nothing when it is anything else ("5x", "", "nan"). */
std::optional<double> parseNumber (const juce::String& text);

/** A shift that a wheel can reach. Throws UserError for anything else, with the reason. */
double parseSemitones (const juce::String& text);

/** The setting that an ID and a value's text ask for. Throws UserError when there is no such parameter or the value is not
    a number from 0 to 1. */
Setting parseSetting (const juce::String& id, const juce::String& value);

/** The range selector of the narrowest span whose wheel reaches a shift, normalised. */
float rangeFor (double semitones);

/** The wheel's position for a shift on a range, both normalised; and the shift for a position. */
float positionFor (double semitones, float range);
double semitonesAt (float position, float range);
} // namespace tarvelline::render
