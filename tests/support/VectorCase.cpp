// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/VectorCase.h"

#include "tests/support/Meters.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tarvelline::test
{
namespace
{
std::vector<char> readBytes (const std::string& path)
{
    std::ifstream file (path, std::ios::binary);

    if (! file)
        throw std::runtime_error (path + ": cannot be read");

    return { std::istreambuf_iterator<char> (file), {} };
}

// The files are little-endian, as every machine this is built for.
std::vector<float> readFloats (const std::string& path)
{
    const auto bytes = readBytes (path);
    std::vector<float> floats (bytes.size() / sizeof (float));
    std::memcpy (floats.data(), bytes.data(), floats.size() * sizeof (float));
    return floats;
}

std::vector<MotionRow> readMotion (const std::string& path)
{
    std::ifstream file (path);
    std::vector<MotionRow> rows;
    std::string line;
    std::getline (file, line); // the column names

    for (MotionRow row; std::getline (file, line); rows.push_back (row))
    {
        std::replace (line.begin(), line.end(), ',', ' ');

        if (! (std::istringstream (line) >> row.sample >> row.target >> row.follower >> row.point >> row.velocity))
            throw std::runtime_error (path + ": " + line);
    }

    return rows;
}
} // namespace

VectorCase VectorCase::load (const std::string& directory, const std::string& name)
{
    const auto path = directory + "/" + name;
    VectorCase result;
    std::ifstream script (path + ".txt");

    for (std::string line; std::getline (script, line);)
        if (! line.empty() && line.front() != '#')
            result.parseLine (line);

    result.input = readFloats (path + ".in.f32");
    result.expected = readFloats (path + ".out.f32");
    result.motion = readMotion (path + ".motion.csv");
    const auto stateBytes = readBytes (path + ".state");
    result.state.append (stateBytes.data(), stateBytes.size());

    const auto starts = result.blockStarts();

    for (auto& event : result.events)
        event.sample = event.block < 0 ? -1 : starts.at (static_cast<std::size_t> (event.block));

    const auto samples = static_cast<std::size_t> (result.length) * static_cast<std::size_t> (result.channels);

    if (samples == 0 || result.blockSizes.empty() || result.input.size() != samples
        || result.expected.size() != samples)
        throw std::runtime_error (path + ": the script's length and channels do not match the audio files");

    return result;
}

void VectorCase::parseLine (const std::string& line)
{
    std::istringstream words (line);
    std::string kind, when;
    words >> kind;
    Event event;

    if (kind == "rate")
        words >> rate;
    else if (kind == "channels")
        words >> channels;
    else if (kind == "length")
        words >> length;
    else if (kind == "block")
        for (int size = 0; words >> size;)
            blockSizes.push_back (size);
    else if (kind == "param")
        words >> event.id >> event.value >> when;
    else if (kind == "bypass")
    {
        event.action = Action::bypass;
        words >> event.value >> when;
    }
    else if (kind == "midi")
    {
        event.action = Action::midi;
        std::string byte;

        for (int i = 0; i < 3 && words >> byte; ++i)
            event.bytes.push_back (static_cast<juce::uint8> (std::stoi (byte, nullptr, 0)));

        words >> event.offset >> when;
    }
    else
        throw std::runtime_error ("unknown script line: " + line);

    if (kind != "block" && words.fail())
        throw std::runtime_error ("malformed script line: " + line);

    if (when.empty())
        return;

    event.block = when == "@init" ? -1 : std::stoi (when.substr (1));
    events.push_back (event);
}

std::vector<int> VectorCase::blockStarts() const
{
    std::vector<int> starts;

    for (int start = 0; start < length;)
    {
        starts.push_back (start);
        start += blockSizes[(starts.size() - 1) % blockSizes.size()];
    }

    return starts;
}

std::vector<int> VectorCase::blockEnds (int splitLength) const
{
    auto ends = blockStarts(); // where a block starts another has ended

    if (splitLength > 0)
    {
        ends.clear();

        for (int end = splitLength; end < length; end += splitLength)
            ends.push_back (end);

        for (auto& event : events)
            ends.push_back (event.sample);
    }

    ends.push_back (length);
    std::sort (ends.begin(), ends.end());
    ends.erase (std::unique (ends.begin(), ends.end()), ends.end());
    ends.erase (ends.begin(), std::upper_bound (ends.begin(), ends.end(), 0));
    return ends;
}

VectorRun VectorCase::play (const VectorTarget& target, int splitLength) const
{
    const auto ends = blockEnds (splitLength);
    VectorRun run;
    run.output.resize (input.size());
    juce::AudioBuffer<float> buffer (channels, length);
    juce::MidiBuffer midi;
    auto bypassed = false;
    auto event = events.begin();

    const auto applyEvents = [&] (int sample)
    {
        for (; event != events.end() && event->sample <= sample; ++event)
        {
            if (event->action == Action::parameter)
                target.setParameter (event->id, event->value);
            else if (event->action == Action::bypass)
                bypassed = event->value > 0.0f;
            else
                midi.addEvent (event->bytes.data(), static_cast<int> (event->bytes.size()), event->offset);
        }
    };

    applyEvents (-1);
    auto largestBlock = 0;

    for (std::size_t i = 0; i < ends.size(); ++i)
        largestBlock = std::max (largestBlock, ends[i] - (i == 0 ? 0 : ends[i - 1]));

    target.prepare (rate, largestBlock);

    for (auto start = 0; const auto end : ends)
    {
        applyEvents (start);
        buffer.setSize (channels, end - start, false, false, true);

        for (int c = 0; c < channels; ++c)
            for (int i = start; i < end; ++i)
                buffer.setSample (c, i - start, input[static_cast<std::size_t> (i * channels + c)]);

        target.process (buffer, midi, bypassed);
        midi.clear();

        for (int c = 0; c < channels; ++c)
            for (int i = start; i < end; ++i)
                run.output[static_cast<std::size_t> (i * channels + c)] = buffer.getSample (c, i - start);

        if (target.motion && end % 512 == 0)
        {
            run.motion.push_back (target.motion());
            run.motion.back().sample = end - 1;
        }

        start = end;
    }

    return run;
}

Agreement compareAudio (const std::vector<float>& actual, const std::vector<float>& expected, int channels, double rate)
{
    Agreement result;
    const auto ratioDb = [] (Signal a, Signal e)
    {
        const auto ratio = signalToDifferenceDb (a, e);
        return std::isnan (ratio) ? -300.0 : ratio; // a sample that is not finite agrees with nothing
    };

    const auto width = static_cast<std::size_t> (channels);
    const auto pieceLength = static_cast<std::size_t> (std::lround (rate / 10.0)) * width;
    const auto piece = [pieceLength] (Signal signal, std::size_t start)
    { return signal.subspan (start, std::min (pieceLength, signal.size() - start)); };
    std::vector<double> ratios;
    auto loudest = -300.0;

    for (std::size_t start = 0; start < expected.size(); start += pieceLength)
        loudest = std::max (loudest, levelDb (piece (expected, start)));

    for (std::size_t start = 0; start < expected.size(); start += pieceLength)
    {
        if (levelDb (piece (expected, start)) < loudest - 50.0)
            continue;

        ratios.push_back (ratioDb (piece (actual, start), piece (expected, start)));

        if (ratios.size() == 1 || ratios.back() < result.worstPieceDb)
        {
            result.worstPieceDb = ratios.back();
            result.worstPieceStart = static_cast<int> (start / width);
        }
    }

    for (std::size_t i = 0; i < expected.size() && result.firstDifference < 0; ++i)
        if (! (std::abs (actual[i] - expected[i]) <= 1.0e-4f))
            result.firstDifference = static_cast<int> (i / width);

    std::sort (ratios.begin(), ratios.end());
    result.overallDb = ratioDb (actual, expected);
    result.medianPieceDb = ratios.empty() ? 0.0 : ratios[ratios.size() / 2];
    return result;
}

double largestMotionError (const std::vector<MotionRow>& actual, const std::vector<MotionRow>& expected)
{
    auto largest = -1.0;

    for (auto& row : actual)
    {
        const auto found = std::find_if (expected.begin(), expected.end(),
                                         [&] (const MotionRow& other) { return other.sample == row.sample; });

        if (found != expected.end())
            largest =
                std::max ({ largest, std::abs (row.target - found->target), std::abs (row.follower - found->follower),
                            std::abs (row.point - found->point), std::abs (row.velocity - found->velocity) });
    }

    return largest;
}
} // namespace tarvelline::test
