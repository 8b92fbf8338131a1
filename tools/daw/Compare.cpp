// SPDX-License-Identifier: GPL-3.0-or-later
// Compares two recordings of the same in windows of time, "kind:from-to" in seconds: in a `same` one the samples are equal
// and are not silence; in a `shifted` one pitch and level agree. Prints a line a window; ends with 1 if one disagrees.
#include "tests/support/Meters.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace tarvelline
{
namespace
{
constexpr double mostCents = 0.1, mostDecibels = 0.3; // where the engine's hops fall differs between two hosts
constexpr double leastLevel = -60.0;                  // dB: below it nothing would be compared

struct Recording
{
    double rate = 0.0;
    std::vector<float> left, right;
};

Recording read (const juce::String& path)
{
    juce::WavAudioFormat format;
    const auto file = juce::File::getCurrentWorkingDirectory().getChildFile (path);
    const std::unique_ptr<juce::AudioFormatReader> reader (
        format.createReaderFor (new juce::FileInputStream (file), true));

    if (reader == nullptr)
        return {};

    const std::vector<float> empty (static_cast<std::size_t> (reader->lengthInSamples));
    Recording recording { reader->sampleRate, empty, empty };
    float* channels[] = { recording.left.data(), recording.right.data() };
    reader->read (channels, 2, 0, static_cast<int> (empty.size()));
    return recording;
}

test::Signal part (const std::vector<float>& samples, double rate, double from, double to)
{
    const auto start = static_cast<std::size_t> (from * rate), end = static_cast<std::size_t> (to * rate);
    return end <= samples.size() && start < end ? test::Signal (samples).subspan (start, end - start) : test::Signal();
}

bool compare (test::Signal actual, test::Signal expected, double rate, bool mustBeEqual)
{
    if (actual.size() != expected.size() || actual.empty() || ! (test::levelDb (expected) > leastLevel))
    {
        std::puts ("nothing to compare");
        return false;
    }

    if (mustBeEqual)
    {
        const auto decibels = test::signalToDifferenceDb (actual, expected);
        std::printf ("%.1f dB above the difference\n", decibels); // inf: equal
        return std::isinf (decibels);
    }

    const auto cents = test::centsBetween (test::frequencyHz (expected, rate), test::frequencyHz (actual, rate));
    const auto decibels = test::levelDb (actual) - test::levelDb (expected);
    std::printf ("%+.4f cents, %+.3f dB\n", cents, decibels);
    return std::abs (cents) <= mostCents && std::abs (decibels) <= mostDecibels;
}

bool compareWindow (const Recording& actual, const Recording& expected, const juce::String& window)
{
    const auto kind = window.upToFirstOccurrenceOf (":", false, false);
    const auto times = juce::StringArray::fromTokens (window.fromFirstOccurrenceOf (":", false, false), "-", "");
    const auto from = times[0].getDoubleValue(), to = times[1].getDoubleValue();
    bool agree = actual.rate > 0.0 && actual.rate == expected.rate;

    for (const auto channel : { &Recording::left, &Recording::right })
    {
        std::printf ("  %-16s %-6s", window.toRawUTF8(), channel == &Recording::left ? "left" : "right");
        agree = compare (part (actual.*channel, actual.rate, from, to), part (expected.*channel, actual.rate, from, to),
                         actual.rate, kind == "same")
                && agree;
    }

    return agree;
}
} // namespace
} // namespace tarvelline

int main (int count, char** values)
{
    const juce::StringArray arguments (values + 1, count - 1);
    const auto actual = tarvelline::read (arguments[0]), expected = tarvelline::read (arguments[1]);
    bool agree = arguments.size() > 2;

    for (int i = 2; i < arguments.size(); ++i)
        agree = tarvelline::compareWindow (actual, expected, arguments[i]) && agree;

    return agree ? 0 : 1;
}
