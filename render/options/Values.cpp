// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/Values.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace tarvelline::render
{
namespace
{
constexpr double mostSemitones = wheelRangeTable.back() / 2.0;
constexpr auto lastRange = static_cast<float> (wheelRangeTable.size() - 1);

juce::String allParameterIds()
{
    juce::StringArray ids;

    for (const auto& row : parameterTable)
        ids.add (row.id);

    return ids.joinIntoString (", ");
}
} // namespace

const std::vector<Wheel>& wheels()
{
    using namespace parameterId;
    static const std::vector<Wheel> both {
        { "pitch", "--semitones", parameterIndex (mainRange), parameterIndex (mainWheelPar) },
        { "timbre", "--formant", parameterIndex (timbRange), parameterIndex (timbWheelPar) },
    };
    return both;
}

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

double parseSemitones (const juce::String& text)
{
    const auto number = parseNumber (text);

    if (! number || std::abs (*number) > mostSemitones)
        throw UserError ("give a number from -24 to +24; the widest range has 48 semitones, half of them to each side");

    return *number;
}

Setting parseSetting (const juce::String& id, const juce::String& value)
{
    const auto parameter = parameterIndex (id);

    if (parameter < 0)
        throw UserError ("there is no parameter \"" + id + "\"; there are " + allParameterIds());

    const auto number = parseNumber (value);

    if (! number || *number < 0.0 || *number > 1.0)
        throw UserError ("\"" + value + "\" is no value for " + id + "; give a number from 0 to 1");

    return { parameter, static_cast<float> (*number) };
}

float rangeFor (double semitones)
{
    const auto span = std::find_if (wheelRangeTable.begin(), wheelRangeTable.end() - 1,
                                    [&] (double s) { return s / 2.0 >= std::abs (semitones); });
    return static_cast<float> (span - wheelRangeTable.begin()) / lastRange;
}

float positionFor (double semitones, float range)
{
    return static_cast<float> (0.5 + semitones / spanForRange (range * lastRange));
}

double semitonesAt (float position, float range)
{
    return (static_cast<double> (position) - 0.5) * spanForRange (range * lastRange);
}
} // namespace tarvelline::render
