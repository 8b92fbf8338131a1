// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_audio_processors/juce_audio_processors.h>

#include <functional>
#include <string>
#include <vector>

namespace tarvelline::test
{
/** The main wheel after one sample. */
struct MotionRow
{
    int sample = 0;
    double target = 0.0, follower = 0.0, point = 0.0, velocity = 0.0;
};

/** What a golden case is played through: a processor of this program, or a module in a host. */
struct VectorTarget
{
    std::function<void (const std::string& id, float normalised)> setParameter;
    std::function<void (double sampleRate, int largestBlock)> prepare;
    std::function<void (juce::AudioBuffer<float>&, juce::MidiBuffer&, bool bypassed)> process;
    std::function<MotionRow()> motion; // empty where the wheel cannot be seen
};

/** What came out: interleaved samples, and the wheel wherever a block ended on a multiple of 512 samples. */
struct VectorRun
{
    std::vector<float> output;
    std::vector<MotionRow> motion;
};

/** One golden case: a script, its input, and what must come out. tests/golden/README.md describes the files. */
class VectorCase
{
public:
    /** Throws std::runtime_error, naming file and line, for a case that is incomplete or malformed. */
    static VectorCase load (const std::string& directory, const std::string& name);

    /** Plays the script in its own blocks, or, when `splitLength` is above 0, in blocks that end on the multiples of it
        and where the script's next event is due. */
    VectorRun play (const VectorTarget&, int splitLength = 0) const;

    double rate = 0.0;
    int channels = 0;
    int length = 0; // samples a channel
    std::vector<float> input, expected;
    std::vector<MotionRow> motion;
    juce::MemoryBlock state;

private:
    enum class Action
    {
        parameter,
        midi,
        bypass
    };

    struct Event
    {
        int block = -1; // -1: before the first prepareToPlay
        Action action = Action::parameter;
        std::string id;
        float value = 0.0f; // normalised, or 0 and 1 for bypass
        std::vector<juce::uint8> bytes;
        int offset = 0;

        int sample = -1; // where the block starts
    };

    void parseLine (const std::string& line);
    std::vector<int> blockStarts() const;
    std::vector<int> blockEnds (int splitLength) const;

    std::vector<int> blockSizes;
    std::vector<Event> events;
};

/** Agreement with the expected signal: ratios of signal to difference in dB, infinite for equal bits. A piece is 100 ms; it
    counts when the expected signal in it is within 50 dB of the loudest piece. */
struct Agreement
{
    double overallDb = 0.0, worstPieceDb = 0.0, medianPieceDb = 0.0;
    int worstPieceStart = 0;
    int firstDifference = -1; // sample of the first difference above 1e-4, -1 when there is none
};

Agreement compareAudio (const std::vector<float>& actual, const std::vector<float>& expected, int channels,
                        double rate);

/** The largest difference of any wheel field in the rows that both have; -1 when no row of `actual` is in `expected`. */
double largestMotionError (const std::vector<MotionRow>& actual, const std::vector<MotionRow>& expected);
} // namespace tarvelline::test
