// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/render/Timeline.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::render
{
namespace
{
constexpr double lastSample = 1.0e15; // times beyond are all alike: after the end

std::int64_t sampleAt (double seconds, double sampleRate)
{
    return static_cast<std::int64_t> (std::llround (std::min (seconds * sampleRate, lastSample)));
}
} // namespace

Timeline::Timeline (const std::vector<TimedSetting>& changes, const std::vector<TimedMessage>& played,
                    double sampleRate)
{
    for (const auto& change : changes)
        settings.emplace_back (sampleAt (change.seconds, sampleRate), change.setting);

    std::int64_t earliest = 0;

    for (const auto& item : played)
    {
        const auto sample = std::max (earliest, sampleAt (item.seconds, sampleRate));
        messages.emplace_back (sample, item.message);
        earliest = sample + 1;
    }
}

Block Timeline::blockAt (std::int64_t start, int largest)
{
    Block block;
    block.start = start;
    auto end = start + largest;

    for (; nextSetting < settings.size() && settings[nextSetting].first <= start; ++nextSetting)
        block.settings.push_back (settings[nextSetting].second);

    if (nextMessage < messages.size() && messages[nextMessage].first <= start)
    {
        const auto& message = messages[nextMessage++].second;
        block.midi.addEvent (message, 0);

        if (message.isPitchWheel())
            end = start + 1;
    }

    if (nextSetting < settings.size())
        end = std::min (end, settings[nextSetting].first);

    if (nextMessage < messages.size())
        end = std::min (end, messages[nextMessage].first);

    block.length = static_cast<int> (end - start);
    return block;
}

int Timeline::eventsFrom (std::int64_t sample) const
{
    const auto isLate = [&] (const auto& event) { return event.first >= sample; };
    return static_cast<int> (std::count_if (settings.begin(), settings.end(), isLate)
                             + std::count_if (messages.begin(), messages.end(), isLate));
}
} // namespace tarvelline::render
