// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

namespace tarvelline
{
/** Draws how the sound follows a wheel that is turned up by six semitones at once: semitones against seconds for several
    settings of gravity, inertia and smooth. The curves are those of the plug-in's own wheel model. */
juce::Image drawMotion();
} // namespace tarvelline
