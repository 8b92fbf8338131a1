// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace tarvelline::render
{
/** Windows has no signals: the event by which one run of this program asks another to clear up and end. Whichever of the two
    comes first makes it. */
inline std::wstring stopEventOf (unsigned long processId)
{
    return L"Local\\tarvelline-render-stop-" + std::to_wstring (processId);
}
} // namespace tarvelline::render
