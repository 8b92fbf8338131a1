// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Options.h"

namespace tarvelline::render
{
/** Renders one recording with a plug-in of its own, and prints a line about it, and notes about what was lost. Throws
    UserError or Interrupted, having left every file as it was. This and the next start the framework, with threads. */
void renderFile (const Options&, Task);

/** Writes the state that the options ask for, without playing anything. */
void saveStateOnly (const Options&);
} // namespace tarvelline::render
