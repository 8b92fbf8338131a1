// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_core/juce_core.h>

#include <filesystem>

namespace tarvelline::render
{
/** A path as the standard library has it, and back, through UTF-8 on every system. */
inline std::filesystem::path pathOf (const juce::File& file)
{
    return reinterpret_cast<const char8_t*> (file.getFullPathName().toRawUTF8());
}

inline juce::String textOf (const std::filesystem::path& path)
{
    return juce::String::fromUTF8 (reinterpret_cast<const char*> (path.u8string().c_str()));
}
} // namespace tarvelline::render
