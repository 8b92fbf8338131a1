// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/Performance.h"

#include "processor/Parameters.h"
#include "render/running/FindModule.h"
#include "render/running/Presets.h"
#include "render/running/StateFile.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
bool playsVoices (const std::vector<Setting>& settings)
{
    const auto notes = parameterIndex (parameterId::midiOptions);
    return std::any_of (settings.begin(), settings.end(),
                        [=] (const auto& setting) { return setting.parameter == notes && setting.value == 0.0f; });
}
} // namespace

std::vector<Setting> startingSettings (const Options& options)
{
    std::vector<Setting> given;

    if (options.state != juce::File())
        given = readState (options.state);
    else if (options.preset.isNotEmpty())
        given = readState (presetNamed (options.preset, findModule (options.module)));

    given.insert (given.end(), options.settings.begin(), options.settings.end());
    std::vector<Setting> settings;

    for (int i = 0; i < static_cast<int> (parameterTable.size()); ++i)
        if (const auto last = std::find_if (given.rbegin(), given.rend(),
                                            [i] (const Setting& setting) { return setting.parameter == i; });
            last != given.rend())
            settings.push_back (*last);

    return settings;
}

Performance::Performance (const Options& options) : settings (startingSettings (options))
{
    if (options.automation != juce::File())
        changes = readAutomation (options.automation);

    if (options.midi != juce::File())
        messages = readMidi (options.midi);

    applyRanges (changes, settings);
}

void Performance::align (double latencySeconds)
{
    alignToSound (changes, messages, latencySeconds, playsVoices (settings));
}
} // namespace tarvelline::render
