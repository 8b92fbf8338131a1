// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/options/Options.h"

namespace tarvelline::render
{
/** Renders several recordings, each with a run of this program of its own, and prints a line for each: what failed on
    stderr, with the reason. Throws UserError before any has begun.
    @returns the program's exit code */
int renderBatch (Options);
} // namespace tarvelline::render
