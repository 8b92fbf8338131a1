// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "render/events/Events.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
constexpr double shiftShare = 1.0;       // of the latency
constexpr double voiceFade = 1.0 / 15.0; // seconds in which a voice ends

// Seconds from a note's end to the next of its key, less the fade: struck while it fades, a voice would stay silent.
double spareTime (const std::vector<TimedMessage>& messages, std::size_t noteOff)
{
    const auto& end = messages[noteOff];
    const auto next = std::find_if (messages.begin() + static_cast<std::ptrdiff_t> (noteOff), messages.end(),
                                    [&] (const TimedMessage& later) {
                                        return later.message.isNoteOn()
                                               && later.message.getNoteNumber() == end.message.getNoteNumber();
                                    });
    return next == messages.end() ? 1.0e6 : next->seconds - end.seconds - voiceFade;
}
} // namespace

void alignToSound (std::vector<TimedSetting>& changes, std::vector<TimedMessage>& messages, double latencySeconds,
                   bool voices)
{
    const auto shiftDelay = shiftShare * latencySeconds;
    const auto mixer = parameterIndex (parameterId::mixerPar);
    std::vector<TimedSetting> atStart;

    for (auto& change : changes)
    {
        if (change.seconds <= 0.0)
            atStart.push_back (change);

        change.seconds += change.setting.parameter == mixer ? latencySeconds : shiftDelay;
    }

    changes.insert (changes.begin(), atStart.begin(), atStart.end());

    for (std::size_t i = 0; i < messages.size(); ++i)
    {
        auto& [seconds, message] = messages[i];

        if (! voices || message.isPitchWheel())
            seconds += seconds > 0.0 ? shiftDelay : 0.0;
        else if (message.isNoteOff())
            seconds += std::clamp (spareTime (messages, i), 0.0, latencySeconds);
    }

    sortEvents (changes);
    sortEvents (messages);
}
} // namespace tarvelline::render
