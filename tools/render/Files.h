// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/render/Options.h"

namespace tarvelline::render
{
/** Follows a link at the place of OUT or the plot, and throws UserError when one of the two cannot be a file of its own:
    when it is a folder or a device, has no folder to stand in, or is one of the files read. */
void checkTargets (Options&);
} // namespace tarvelline::render
