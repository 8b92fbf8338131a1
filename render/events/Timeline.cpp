// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/events/Timeline.h"

#include "processor/Parameters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <tuple>

namespace tarvelline::render
{
namespace
{
constexpr int lineStep = 32;          // samples between two settings of a moving parameter
constexpr double lastSample = 1.0e15; // times beyond are all alike: after the end

std::int64_t sampleAt (double seconds, double sampleRate)
{
    return static_cast<std::int64_t> (std::llround (std::min (seconds * sampleRate, lastSample)));
}
} // namespace

Timeline::Timeline (const std::vector<TimedSetting>& changes, const std::vector<TimedMessage>& played,
                    double sampleRate)
{
    settings.reserve (changes.size());

    for (const auto& change : changes)
        settings.emplace_back (sampleAt (change.seconds, sampleRate), change.setting);

    addLines (changes);
    std::int64_t earliest = 0;

    for (const auto& item : played)
    {
        const auto sample = std::max (earliest, sampleAt (item.seconds, sampleRate));
        messages.emplace_back (sample, item.message);
        earliest = sample + 1;
    }
}

// `settings` has the changes already.
void Timeline::addLines (const std::vector<TimedSetting>& changes)
{
    lines.reserve (changes.size());
    std::array<std::size_t, parameterTable.size()> before {}; // the index of each parameter's change before

    for (std::size_t i = 0; i < changes.size(); ++i)
    {
        const auto& [end, to] = settings[i];
        auto& last = before[static_cast<std::size_t> (to.parameter)];
        const auto& [start, from] = settings[last];

        if (changes[i].onLine && start < end)
            lines.push_back ({ start, end, to.parameter, from.value, to.value });

        last = i;
    }

    std::sort (lines.begin(), lines.end(),
               [] (const Line& a, const Line& b)
               { return std::tie (a.start, a.parameter) < std::tie (b.start, b.parameter); });
}

// Sets what moves at the block's start, and gives the end that this leaves the block.
std::int64_t Timeline::followLines (Block& block, std::int64_t end)
{
    for (; nextLine < lines.size() && lines[nextLine].start <= block.start; ++nextLine)
        running.push_back (lines[nextLine]);

    std::erase_if (running, [&] (const Line& line) { return line.end <= block.start; });

    for (const auto& line : running)
    {
        const auto passed = block.start - line.start;
        const auto part = static_cast<float> (passed) / static_cast<float> (line.end - line.start);

        if (passed % lineStep == 0)
            block.settings.push_back ({ line.parameter, line.from + part * (line.to - line.from) });

        end = std::min (end, block.start + lineStep - passed % lineStep);
    }

    return end;
}

Block Timeline::blockAt (std::int64_t start, int largest)
{
    Block block;
    block.start = start;
    auto end = followLines (block, start + largest);

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
