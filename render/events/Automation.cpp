// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "render/events/Events.h"
#include "render/options/Errors.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace tarvelline::render
{
namespace
{
constexpr auto form = "seconds,parameterId,value";
constexpr auto lineMark = "line";
constexpr int longestQuote = 80; // characters of a line that a message repeats

TimedSetting parseFields (const juce::String& line)
{
    auto fields = juce::StringArray::fromTokens (line, ",", "");
    fields.trim();

    const bool onLine = fields.size() == 4 && fields[3] == lineMark;

    if (fields.size() != 3 && ! onLine)
        throw UserError ("\"" + line.substring (0, longestQuote) + "\" is not of the form " + form + " or " + form + ","
                         + lineMark);

    const auto seconds = parseNumber (fields[0]);

    if (! seconds || *seconds < 0.0)
        throw UserError ("\"" + fields[0] + "\" is no time; give seconds from the start, 0 or more");

    for (const auto& wheel : wheels())
        if (fields[1] == wheel.name)
            return { *seconds, { wheel.position, static_cast<float> (parseSemitones (fields[2])) }, onLine, true };

    return { *seconds, parseSetting (fields[1], fields[2]), onLine };
}

TimedSetting parseLine (const juce::String& place, const juce::String& line)
{
    try
    {
        return parseFields (line);
    }
    catch (const UserError& error)
    {
        throw UserError (place + ": " + error.what());
    }
}

// A table that moves a wheel in semitones says nothing else of it, which would depend on the range.
void checkUnits (const juce::String& place, const std::vector<TimedSetting>& changes)
{
    for (const auto& wheel : wheels())
    {
        const auto isOf = [&] (const TimedSetting& c) { return c.setting.parameter == wheel.position; };
        const auto byShift = [&] (const TimedSetting& c) { return isOf (c) && c.inSemitones; };
        const auto byValue = [&] (const TimedSetting& c)
        { return (isOf (c) && ! c.inSemitones) || c.setting.parameter == wheel.range; };

        if (std::any_of (changes.begin(), changes.end(), byShift)
            && std::any_of (changes.begin(), changes.end(), byValue))
            throw UserError (place + ": \"" + wheel.name
                             + "\" is given in semitones: leave out its wheel's and its range's values");
    }
}

bool comesBefore (const TimedSetting& a, const TimedSetting& b)
{
    return std::tie (a.seconds, a.setting.parameter) < std::tie (b.seconds, b.setting.parameter);
}

void checkLines (const juce::String& place, const std::vector<TimedSetting>& changes)
{
    std::array<bool, parameterTable.size()> begun {};

    for (const auto& change : changes)
    {
        const auto parameter = static_cast<std::size_t> (change.setting.parameter);

        if (change.onLine && ! begun[parameter])
            throw UserError (place + ": the line of " + parameterTable[parameter].id + " to "
                             + juce::String (change.seconds)
                             + " s begins nowhere; give a value without \"line\" before it");

        begun[parameter] = true;
    }
}
} // namespace

std::vector<TimedSetting> readAutomation (const juce::File& file)
{
    juce::MemoryBlock text;

    if (! file.existsAsFile() || ! file.loadFileAsData (text))
        throw UserError ("--automate: cannot read " + file.getFullPathName());

    // Leaves out a byte order mark, and takes UTF-16 as well.
    const auto all = juce::String::createStringFromData (text.getData(), static_cast<int> (text.getSize()));
    text.reset();
    juce::MemoryInputStream lines (all.toRawUTF8(), all.getNumBytesAsUTF8(), false);
    std::vector<TimedSetting> changes;
    bool headerMayCome = true;

    for (int number = 1; ! lines.isExhausted(); ++number)
    {
        const auto line = lines.readNextLine().upToFirstOccurrenceOf ("#", false, false).trim();

        if (line.isEmpty())
            continue;

        if (! (headerMayCome && line.removeCharacters (" ").startsWithIgnoreCase (form)))
            changes.push_back (parseLine (file.getFileName() + ", line " + juce::String (number), line));

        headerMayCome = false;
    }

    std::stable_sort (changes.begin(), changes.end(), comesBefore);
    checkUnits (file.getFileName(), changes);
    checkLines (file.getFileName(), changes);
    return changes;
}
} // namespace tarvelline::render
