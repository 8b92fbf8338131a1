// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/InstructionSets.h"

#include <hwy/highway.h>

namespace tarvelline::test
{
namespace
{
std::vector<std::int64_t> targets()
{
    auto found = hwy::SupportedAndGeneratedTargets();

    if (found.empty() || found.back() != HWY_STATIC_TARGET)
        found.push_back (HWY_STATIC_TARGET); // what every machine of the architecture runs: Highway may not name it

    return found;
}
} // namespace

std::vector<std::string> instructionSets()
{
    std::vector<std::string> names;

    for (const auto target : targets())
        names.emplace_back (hwy::TargetName (target));

    return names;
}

OnInstructionSet::OnInstructionSet (const std::string& name)
{
    for (const auto target : targets())
        if (hwy::TargetName (target) == name)
            hwy::SetSupportedTargetsForTest (target);

    hwy::GetChosenTarget().Update (hwy::SupportedTargets());
}

OnInstructionSet::~OnInstructionSet()
{
    hwy::SetSupportedTargetsForTest (0);
    hwy::GetChosenTarget().Update (hwy::SupportedTargets());
}
} // namespace tarvelline::test
