// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/transform/HartleyTransform.h"

#include <cstddef>

namespace tarvelline
{
/** Finds out what this machine can run, so that no audio thread has to: it asks the processor, which takes its time. */
void chooseInstructionSet();

/** HartleyTransform::forward on the best instruction set of this machine. `scratch` has N floats. */
void hartleyForward (const HartleyTables&, float* data, float* scratch) noexcept;
void hartleyForward (const HartleyTables&, const WindowedInput&, float* data, float* scratch) noexcept;

/** HartleyTransform::inverse, likewise, of at most M bins; `scratch` has 2 N floats. */
void hartleyInverse (const HartleyTables&, float* data, std::size_t bins, float* scratch) noexcept;
} // namespace tarvelline
