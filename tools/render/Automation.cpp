// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Errors.h"
#include "tools/render/Events.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
constexpr auto form = "seconds,parameterId,value";

TimedSetting parseLine (const juce::String& place, const juce::String& line)
{
    auto fields = juce::StringArray::fromTokens (line, ",", "");
    fields.trim();

    if (fields.size() != 3)
        throw UserError (place + ": \"" + line + "\" is not of the form " + form);

    const auto seconds = parseNumber (fields[0]);

    if (! seconds || *seconds < 0.0)
        throw UserError (place + ": \"" + fields[0] + "\" is no time; give seconds from the start, 0 or more");

    return { *seconds, parseSetting (place, fields[1], fields[2]) };
}
} // namespace

std::vector<TimedSetting> readAutomation (const juce::File& file)
{
    juce::MemoryBlock text;

    if (! file.existsAsFile() || ! file.loadFileAsData (text))
        throw UserError ("--automate: cannot read " + file.getFullPathName());

    // Leaves out a byte order mark, and takes UTF-16 as well.
    const auto lines = juce::StringArray::fromLines (
        juce::String::createStringFromData (text.getData(), static_cast<int> (text.getSize())));
    std::vector<TimedSetting> changes;
    bool headerMayCome = true;

    for (int i = 0; i < lines.size(); ++i)
    {
        const auto line = lines[i].upToFirstOccurrenceOf ("#", false, false).trim();

        if (line.isEmpty())
            continue;

        if (! (headerMayCome && line.removeCharacters (" ").equalsIgnoreCase (form)))
            changes.push_back (parseLine (file.getFileName() + ", line " + juce::String (i + 1), line));

        headerMayCome = false;
    }

    std::stable_sort (changes.begin(), changes.end(),
                      [] (const auto& a, const auto& b) { return a.seconds < b.seconds; });
    return changes;
}
} // namespace tarvelline::render
