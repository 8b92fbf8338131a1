// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/running/StateFile.h"

#include "processor/TarvellineAudioProcessor.h"
#include "render/options/Errors.h"

#include <limits>

namespace tarvelline::render
{
namespace
{
constexpr juce::int64 largestFile = 1 << 20; // bytes; a state has less than two thousand

int chunkMark (const char* name) { return static_cast<int> (juce::ByteOrder::littleEndianInt (name)); }

/** The processor's part of a .vstpreset: mark, version, class, place of the list; a list of marks, places and sizes. What
    is no such file is given back as it is, and what has no such part gives nothing. */
juce::MemoryBlock processorPart (const juce::MemoryBlock& data)
{
    constexpr int listPlace = 40; // bytes
    juce::MemoryInputStream in (data, false);

    if (in.readInt() != chunkMark ("VST3"))
        return data;

    in.setPosition (listPlace);
    in.setPosition (in.readInt64());

    if (in.readInt() != chunkMark ("List"))
        return {};

    for (auto left = in.readInt(); left > 0 && ! in.isExhausted(); --left)
    {
        const auto mark = in.readInt();
        const auto start = in.readInt64(), size = in.readInt64(), all = in.getTotalLength();

        if (mark == chunkMark ("Comp") && start >= 0 && start <= all && size >= 0 && size <= all - start)
            return { static_cast<const char*> (data.getData()) + start, static_cast<std::size_t> (size) };
    }

    return {};
}
} // namespace

std::vector<Setting> readState (const juce::File& file)
{
    juce::MemoryBlock data;

    if (! file.existsAsFile() || file.getSize() > largestFile || ! file.loadFileAsData (data))
        throw UserError ("--state: cannot read " + file.getFullPathName());

    // The plug-in ignores what is not its own, and tells nobody: but it always restores the height.
    constexpr int untouched = std::numeric_limits<int>::min();
    const auto block = processorPart (data);
    TarvellineAudioProcessor processor;
    processor.uiHeight = untouched;
    processor.setStateInformation (block.getData(), static_cast<int> (block.getSize()));

    if (processor.uiHeight.get() == untouched)
        throw UserError ("--state: " + file.getFullPathName()
                         + " is no state of this plug-in; give a .vstpreset file, such as --save-state writes");

    std::vector<Setting> settings;

    for (const auto* parameter : processor.getParameters())
        settings.push_back ({ parameter->getParameterIndex(), parameter->getValue() });

    return settings;
}
} // namespace tarvelline::render
