// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <numbers>
#include <random>
#include <vector>

namespace tarvelline::bench
{
/** A second of what an effect meets: two harmonic tones that decay and start again four times, over quiet noise. Onsets,
    steady partials and a noise floor each take their own way through the engine. */
inline std::vector<float> material (double rate)
{
    std::mt19937 generator;
    std::vector<float> samples (static_cast<std::size_t> (rate));

    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        const auto seconds = static_cast<double> (i) / rate;
        const auto decay = std::exp (-6.0 * std::fmod (seconds, 0.25));
        auto value = 0.01 * (static_cast<double> (generator()) / 2147483647.5 - 1.0);

        for (const auto fundamental : { 196.0, 293.66 })
            for (int n = 1; n <= 12; ++n)
                value += 0.15 * decay / n * std::sin (2.0 * std::numbers::pi * fundamental * n * seconds);

        samples[i] = static_cast<float> (value);
    }

    return samples;
}

/** Times blocks of audio: what they cost, and how near the slowest came to its deadline. CPU time throughout, so that
    other programs on the machine do not count. */
class BlockMeter
{
public:
    BlockMeter (int blockSize, double rate) : secondsPerBlock (blockSize / rate) {}

    /** Runs the benchmark's loop, then plays the same second some times over, each block timed alone: to read a clock costs
        as much as a part of a block. What else the machine did meets other blocks every time, so the least of a block's times
        is its own.
        @param restart  brings all that work() changes back to where that second begins */
    template <typename Work, typename Restart>
    void measure (benchmark::State& state, Work&& work, Restart&& restart)
    {
        for (auto _ : state)
            work();

        constexpr int rounds = 8;
        std::vector<double> least (static_cast<std::size_t> (1.0 / secondsPerBlock), 1.0);

        for (int round = 0; round < rounds; ++round)
        {
            restart();

            for (auto& seconds : least)
            {
                const auto start = std::clock();
                work();
                seconds = std::min (seconds, static_cast<double> (std::clock() - start) / CLOCKS_PER_SEC);
            }
        }

        const auto slowest = *std::max_element (least.begin(), least.end());

        using benchmark::Counter;
        const auto secondsOfAudio = static_cast<double> (state.iterations()) * secondsPerBlock;
        state.counters["cpu_per_audio_s"] = Counter (secondsOfAudio, Counter::kIsRate | Counter::kInvert);
        state.counters["x_realtime"] = Counter (secondsOfAudio, Counter::kIsRate);
        state.counters["slowest_share"] = slowest / secondsPerBlock; // of the block's deadline; 1 = a drop-out
    }

private:
    double secondsPerBlock;
};
} // namespace tarvelline::bench
