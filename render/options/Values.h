// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <optional>

namespace tarvelline::render
{
/** A parameter, by its index in parameterTable, and the normalised value it is to take. */
struct Setting
{
    int parameter = 0;
    float value = 0.0f;
};

/** The whole text as a finite number, with an optional sign; nothing when it is anything else ("5x", "", "nan"). */
std::optional<double> parseNumber (const juce::String& text);

/** The setting that an ID and a value's text ask for. Throws UserError when there is no such parameter or the value is not
    a number from 0 to 1.
    @param place  where it was asked for, to begin the message with */
Setting parseSetting (const juce::String& place, const juce::String& id, const juce::String& value);
} // namespace tarvelline::render
