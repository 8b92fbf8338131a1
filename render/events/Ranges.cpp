// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "render/events/Events.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
namespace
{
/** The value of a parameter among those that playing begins with, put there if it is not. Until the next call. */
float& valueOf (std::vector<Setting>& settings, int parameter)
{
    const auto found =
        std::find_if (settings.begin(), settings.end(), [=] (const auto& s) { return s.parameter == parameter; });

    if (found != settings.end())
        return found->value;

    const auto& row = parameterTable[static_cast<std::size_t> (parameter)];
    const auto place =
        std::find_if (settings.begin(), settings.end(), [=] (const auto& s) { return s.parameter > parameter; });
    return settings.insert (place, { parameter, row.defaultValue / row.rangeEnd })->value;
}

float widestShift (const std::vector<TimedSetting>& changes, const Wheel& wheel)
{
    float widest = -1.0f; // none

    for (const auto& change : changes)
        if (change.inSemitones && change.setting.parameter == wheel.position)
            widest = std::max (widest, std::abs (change.setting.value));

    return widest;
}

void applyRange (std::vector<TimedSetting>& changes, std::vector<Setting>& settings, const Wheel& wheel, float widest)
{
    const auto range = valueOf (settings, wheel.range);

    if (const auto wide = rangeFor (widest); wide > range)
    {
        const auto start = semitonesAt (valueOf (settings, wheel.position), range);
        valueOf (settings, wheel.range) = wide;
        valueOf (settings, wheel.position) = positionFor (start, wide);
    }

    for (auto& change : changes)
        if (change.inSemitones && change.setting.parameter == wheel.position)
            change = { change.seconds,
                       { wheel.position, positionFor (change.setting.value, valueOf (settings, wheel.range)) },
                       change.onLine };
}
} // namespace

void applyRanges (std::vector<TimedSetting>& changes, std::vector<Setting>& settings)
{
    const auto timbreInUse = parameterIndex (parameterId::toggleSize);

    for (const auto& wheel : wheels())
        if (const auto widest = widestShift (changes, wheel); widest >= 0.0f)
        {
            applyRange (changes, settings, wheel, widest);

            if (&wheel == &wheels().back()
                && std::none_of (changes.begin(), changes.end(),
                                 [=] (const auto& c) { return c.setting.parameter == timbreInUse; }))
                valueOf (settings, timbreInUse) = 1.0f;
        }
}
} // namespace tarvelline::render
