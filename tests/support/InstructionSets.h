// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarvelline::test
{
/** The instruction sets that the engine is built for and this machine can run, the best one first. The last one is what every
    machine of the architecture has: "SCALAR" where that is scalar code, "SSE2" or "NEON" where it is not. */
std::vector<std::string> instructionSets();

/** Holds the engine to one of them while it lives; afterwards the machine's best one counts again. */
class OnInstructionSet
{
public:
    explicit OnInstructionSet (const std::string& name);
    ~OnInstructionSet();
    OnInstructionSet (const OnInstructionSet&) = delete;
    OnInstructionSet& operator= (const OnInstructionSet&) = delete;
};
} // namespace tarvelline::test
