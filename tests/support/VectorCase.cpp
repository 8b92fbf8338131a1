// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/VectorCase.h"

#include "processor/Parameters.h"
#include "tests/support/Meters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace tarvelline::test
{
namespace
{
// The files are little-endian, as every machine this is built for.
std::vector<float> readFloats (const juce::File& file)
{
    juce::MemoryBlock bytes;
    file.loadFileAsData (bytes);
    std::vector<float> floats (bytes.getSize() / sizeof (float));
    bytes.copyTo (floats.data(), 0, floats.size() * sizeof (float));
    return floats;
}

/** The words of every line that says something. */
std::vector<juce::StringArray> readLines (const juce::File& file)
{
    std::vector<juce::StringArray> lines;

    for (const auto& line : juce::StringArray::fromLines (file.loadFileAsString()))
        if (line.isNotEmpty() && ! line.startsWithChar ('#'))
            lines.push_back (juce::StringArray::fromTokens (line, " ,", {}));

    return lines;
}

int byteOf (const juce::String& word) { return word.startsWith ("0x") ? word.getHexValue32() : word.getIntValue(); }
} // namespace

VectorCase::VectorCase (const juce::String& caseName) : name (caseName)
{
    const auto file = [this] (const char* ending)
    { return juce::File (TARVELLINE_GOLDEN_DIR).getChildFile (name + ending); };

    for (const auto& words : readLines (file (".txt")))
    {
        const auto number = words[1].getIntValue();

        if (words[0] == "rate")
            rate = number;
        else if (words[0] == "channels")
            channels = number;
        else if (words[0] == "length")
            length = number;
        else if (words[0] == "block")
            for (int i = 1; i < words.size(); ++i)
                blockSizes.push_back (words[i].getIntValue());
        else
            events.push_back (
                { words.contains ("@init") ? -1 : words.strings.getLast().substring (1).getIntValue(), words });
    }

    for (const auto& row : readLines (file (".motion.csv")))
        motion[row[0].getIntValue()] = { row[1].getDoubleValue(), row[2].getDoubleValue(), row[3].getDoubleValue(),
                                         row[4].getDoubleValue() };

    input = readFloats (file (".in.f32"));
    expected = readFloats (file (".out.f32"));
    file (".state").loadFileAsData (state);
    const auto samples = static_cast<std::size_t> (length * channels);

    if (samples == 0 || blockSizes.empty() || input.size() != samples || expected.size() != samples)
        throw std::runtime_error (name.toStdString() + ": the script and its files are missing or do not match");
}

std::vector<float> VectorCase::play (juce::AudioProcessor& processor, const std::function<void (int)>& afterBlock) const
{
    juce::AudioBuffer<float> audio (channels, length), nothing (channels, 0);
    juce::MidiBuffer midi;
    const auto index = [this] (int channel, int i) { return static_cast<std::size_t> (i * channels + channel); };

    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < length; ++i)
            audio.setSample (c, i, input[index (c, i)]);

    auto bypassed = false;
    auto event = events.begin();

    const auto applyEvents = [&] (int block)
    {
        for (; event != events.end() && event->block <= block; ++event)
        {
            const auto& words = event->words;

            if (words[0] == "param")
            {
                // By its place in the list, since a module in a host does not tell its parameters' IDs.
                processor.getParameters()[parameterIndex (words[1])]->setValueNotifyingHost (words[2].getFloatValue());
            }
            else if (words[0] == "bypass")
                bypassed = words[1] == "1";
            else
                midi.addEvent (juce::MidiMessage (byteOf (words[1]), byteOf (words[2]), byteOf (words[3])),
                               words[4].getIntValue());
        }
    };

    // A module learns of its parameters with the next block, here one of no samples.
    applyEvents (-1);
    processor.processBlock (nothing, midi);
    processor.releaseResources();
    processor.prepareToPlay (rate, *std::max_element (blockSizes.begin(), blockSizes.end()));

    for (int start = 0, block = 0; start < length; ++block)
    {
        const auto planned = blockSizes[static_cast<std::size_t> (block) % blockSizes.size()];
        const auto size = std::min (planned, length - start);
        juce::AudioBuffer<float> part (audio.getArrayOfWritePointers(), channels, start, size);
        applyEvents (block);

        if (bypassed)
            processor.processBlockBypassed (part, midi);
        else
            processor.processBlock (part, midi);

        midi.clear();
        start += size;
        afterBlock (start);
    }

    std::vector<float> output (input.size());

    for (int c = 0; c < channels; ++c)
        for (int i = 0; i < length; ++i)
            output[index (c, i)] = audio.getSample (c, i);

    return output;
}

void VectorCase::expectSound (juce::AudioProcessor& processor, const std::function<void (int)>& afterBlock) const
{
    const auto output = play (processor, afterBlock);
    const auto pieceLength = static_cast<std::size_t> (std::lround (rate / 10.0) * channels); // 100 ms
    const auto piece = [pieceLength] (Signal signal, std::size_t start)
    { return signal.subspan (start, std::min (pieceLength, signal.size() - start)); };

    std::vector<double> ratios; // signal to difference in dB
    auto loudest = -300.0;

    for (std::size_t start = 0; start < expected.size(); start += pieceLength)
        loudest = std::max (loudest, levelDb (piece (expected, start)));

    // A piece counts when its expected signal is within 50 dB of the loudest one's.
    for (std::size_t start = 0; start < expected.size(); start += pieceLength)
        if (levelDb (piece (expected, start)) >= loudest - 50.0)
            ratios.push_back (signalToDifferenceDb (piece (output, start), piece (expected, start)));

    ASSERT_TRUE (allFinite (output));
    const auto overall = signalToDifferenceDb (output, expected);
    std::sort (ratios.begin(), ratios.end());
    const auto worst = ratios.front(), median = ratios[ratios.size() / 2];

    std::printf ("%s: overall %.1f dB, worst piece %.1f dB, median %.1f dB\n", name.toRawUTF8(), overall, worst,
                 median);
    EXPECT_GE (overall, 75.0);
    EXPECT_GE (worst, 50.0);
    EXPECT_GE (median, 95.0);
}
} // namespace tarvelline::test
