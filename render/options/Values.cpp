// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Values.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"

#include <charconv>
#include <cmath>
#include <string>

namespace tarvelline::render
{
namespace
{
juce::String allParameterIds()
{
    juce::StringArray ids;

    for (const auto& row : parameterTable)
        ids.add (row.id);

    return ids.joinIntoString (", ");
}
} // namespace

std::optional<double> parseNumber (const juce::String& text)
{
    const auto digits = (text.startsWithChar ('+') ? text.substring (1) : text).toStdString();
    const auto* end = digits.data() + digits.size();
    double number = 0.0;
    const auto result = std::from_chars (digits.data(), end, number);

    if (result.ec != std::errc() || result.ptr != end || ! std::isfinite (number))
        return std::nullopt;

    return number;
}

Setting parseSetting (const juce::String& place, const juce::String& id, const juce::String& value)
{
    const auto parameter = parameterIndex (id);

    if (parameter < 0)
        throw UserError (place + ": there is no parameter \"" + id + "\"; there are " + allParameterIds());

    const auto number = parseNumber (value);

    if (! number || *number < 0.0 || *number > 1.0)
        throw UserError (place + ": \"" + value + "\" is no value for " + id + "; give a number from 0 to 1");

    return { parameter, static_cast<float> (*number) };
}
} // namespace tarvelline::render
