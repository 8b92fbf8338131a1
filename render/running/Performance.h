// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/events/Events.h"
#include "render/options/Options.h"

#include <vector>

namespace tarvelline::render
{
/** What is in force from the first sample on: a state or a preset, then what was set one by one. A value for each parameter that
    has one, in the order of parameterTable, in which a host hands them on. Throws UserError. Wants the framework's message
    thread, as the next does. */
std::vector<Setting> startingSettings (const Options&);

/** What is played, beside the recording. */
struct Performance
{
    /** Reads the files that the options name. Throws UserError. */
    explicit Performance (const Options&);

    /** Delays all of it by the plug-in's latency: see alignToSound(). */
    void align (double latencySeconds);

    std::vector<Setting> settings; // from the first sample on
    std::vector<TimedSetting> changes;
    std::vector<TimedMessage> messages;
};
} // namespace tarvelline::render
