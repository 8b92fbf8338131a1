// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/transform/HartleyTransform.h"

#include "engine/transform/HartleyKernels.h"

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

namespace tarvelline
{
namespace
{
/** What the passes of one transform write between them. On the stack: warm, and nobody else's. */
struct Scratch
{
    alignas (64) float values[2 * HartleyTables::longest];
};
} // namespace

void HartleyTransform::init (int transformLength)
{
    if (transformLength < HartleyTables::shortest || transformLength > HartleyTables::longest
        || ! std::has_single_bit (static_cast<unsigned> (transformLength)))
        throw std::invalid_argument ("no length of a Hartley transform: " + std::to_string (transformLength));

    tables = HartleyTables (transformLength);
    chooseInstructionSet();
}

void HartleyTransform::forward (float* data) const noexcept
{
    Scratch scratch; // not cleared: the first pass writes all that is read
    hartleyForward (tables, data, scratch.values);
}

void HartleyTransform::forward (const WindowedInput& input, float* data) const noexcept
{
    Scratch scratch;
    hartleyForward (tables, input, data, scratch.values);
}

void HartleyTransform::inverse (float* data, int bins) const noexcept
{
    Scratch scratch;
    hartleyInverse (tables, data, static_cast<std::size_t> (std::min (bins, tables.length / 2)), scratch.values);
}
} // namespace tarvelline
