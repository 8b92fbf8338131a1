// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Values.h"

#include "processor/Parameters.h"
#include "tools/render/Errors.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace tarvelline::render
{
namespace
{
auto findParameter (juce::StringRef id)
{
    return std::find_if (parameterTable.begin(), parameterTable.end(),
                         [&] (const ParameterRow& row) { return id == juce::StringRef (row.id); });
}

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
    const auto row = findParameter (id);

    if (row == parameterTable.end())
        throw UserError (place + ": there is no parameter \"" + id + "\"; there are " + allParameterIds());

    const auto number = parseNumber (value);

    if (! number || *number < 0.0 || *number > 1.0)
        throw UserError (place + ": \"" + value + "\" is no value for " + id + "; give a number from 0 to 1");

    return { static_cast<int> (row - parameterTable.begin()), static_cast<float> (*number) };
}

int parameterIndex (juce::StringRef id)
{
    const auto row = findParameter (id);
    jassert (row != parameterTable.end());
    return static_cast<int> (row - parameterTable.begin());
}
} // namespace tarvelline::render
