// SPDX-License-Identifier: GPL-3.0-or-later
// A file of any content, handed to each of tarvelline-render's readers: it is read, or refused with a message.
#include "fuzz/Require.h"
#include "render/events/Timeline.h"
#include "render/options/Errors.h"
#include "render/running/StateFile.h"
#include "render/sound/Recording.h"

#include <string_view>

namespace tarvelline::fuzz
{
namespace
{
using namespace render;

constexpr int longestBlock = 65536;  // samples
constexpr int longestPlay = 1 << 20; // samples of a timeline that are walked through

template <typename Read>
void tryReader (Read read)
{
    try
    {
        read();
    }
    catch (const UserError& error)
    {
        require (std::string_view (error.what()).size() > 10, "an error is explained");
    }
}

void playEvents (std::vector<TimedSetting> changes, std::vector<TimedMessage> messages)
{
    std::vector<Setting> settings;
    applyRanges (changes, settings);
    alignToSound (changes, messages, 2048 / 48000.0, true);

    for (const auto& message : messages)
        require (message.seconds >= 0.0, "an event has a time");

    Timeline timeline (changes, messages, 48000.0);

    for (std::int64_t position = 0; position < longestPlay;)
    {
        const auto block = timeline.blockAt (position, longestBlock);
        require (block.length > 0 && block.length <= longestBlock && block.midi.getNumEvents() <= 1, "time goes on");
        position += block.length;
    }
}

void readSome (const juce::File& file)
{
    Recording recording (file, file.getFullPathName());
    juce::AudioBuffer<float> buffer (static_cast<int> (recording.numChannels), 512);

    for (const auto start : { std::int64_t { 0 }, std::int64_t { recording.lengthInSamples - 256 } })
        recording.read (&buffer, 0, buffer.getNumSamples(), start, true, true);

    juce::FileInputStream notes (file);
    juce::MemoryOutputStream copy;
    appendNotes (recording.getLayout(), notes, copy, false);
}
} // namespace
} // namespace tarvelline::fuzz

// What the sound library and its codecs lose of a file that they refuse is a few kilobytes, in a process that then ends. Bad
// reads and writes in them are findings still.
extern "C" const char* __lsan_default_suppressions() // NOLINT: the sanitizer's name
{
    return "leak:libsndfile.so\nleak:libvorbis.so\nleak:libogg.so\nleak:libFLAC.so\nleak:libopus.so\nleak:libmpg123."
           "so\n";
}

int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    using namespace tarvelline::fuzz;
    static const juce::TemporaryFile temporary;
    const auto& file = temporary.getFile();

    if (size == 0 ? ! file.replaceWithText ({}) : ! file.replaceWithData (data, size))
        return 0;

    tryReader ([&] { playEvents ({}, readMidi (file)); });
    tryReader ([&] { playEvents (readAutomation (file), {}); });
    tryReader ([&] { readSome (file); });
    tryReader ([&] { readState (file); });
    return 0;
}
