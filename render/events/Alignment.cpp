// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/events/Events.h"

#include <algorithm>

namespace tarvelline::render
{
namespace
{
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
    const auto atStart = std::find_if (changes.begin(), changes.end(), [] (const auto& c) { return c.seconds > 0.0; });
    const std::vector<TimedSetting> fromTheStart (changes.begin(), atStart);

    for (auto& change : changes)
        change.seconds += latencySeconds;

    changes.insert (changes.begin(), fromTheStart.begin(), fromTheStart.end());

    for (std::size_t i = 0; i < messages.size(); ++i)
    {
        auto& [seconds, message] = messages[i];

        if (! voices || message.isPitchWheel())
            seconds += seconds > 0.0 ? latencySeconds : 0.0;
        else if (message.isNoteOff())
            seconds += std::clamp (spareTime (messages, i), 0.0, latencySeconds);
    }

    sortEvents (messages);
}
} // namespace tarvelline::render
