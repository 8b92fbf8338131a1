// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/sound/Pipes.h"

#include "render/sound/SystemFiles.h"

#include <array>

namespace tarvelline::render
{
juce::File fileForPipe()
{
    return juce::File::getSpecialLocation (juce::File::tempDirectory).getChildFile ("tarvelline-render");
}

void copyFromInput (juce::OutputStream& out)
{
    std::array<char, 65536> bytes {};

    while (const auto got = readInput (bytes.data(), bytes.size()))
        if (! out.write (bytes.data(), got))
            return; // what keeps it tells
}

void copyToOutput (const juce::File& file)
{
    juce::FileInputStream in (file);
    std::array<char, 65536> bytes {};

    for (int got = 0; (got = in.read (bytes.data(), static_cast<int> (bytes.size()))) > 0;)
        writeOutput (bytes.data(), static_cast<std::size_t> (got));
}
} // namespace tarvelline::render
