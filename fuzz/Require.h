// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace tarvelline::fuzz
{
/** Ends the program with a message unless the condition holds. */
void require (bool condition, const char* promise);
} // namespace tarvelline::fuzz

/** What every target defines; the fuzzer calls it with one input after the other. */
extern "C" int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size);
