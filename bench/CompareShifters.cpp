// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/CompareShifters.h"

#include "bench/BenchSupport.h"

#include <array>
#include <cstdio>

namespace tarvelline::bench
{
namespace
{
constexpr double rate = 44100.0; // Hz
constexpr int blockSize = 64;
constexpr int rounds = 7; // programs take turns, so that a slow moment of the machine meets them all alike
constexpr std::array shifts { 3, -3, 12, -12, 24, -24 };

double cpuSeconds() { return static_cast<double> (std::clock()) / CLOCKS_PER_SEC; }

/** Plays the material through the shifter; calls around (work) for each block. */
template <typename Around>
void play (Shifter& shifter, const std::vector<float>& signal, int size, const Around& around)
{
    std::vector<float> left (static_cast<std::size_t> (size)), right (left);
    float* const out[] = { left.data(), right.data() };

    for (std::size_t start = 0; start + left.size() <= signal.size(); start += left.size())
    {
        const float* const in[] = { signal.data() + start, signal.data() + start };
        around ([&] { shifter.process (in, out, size); });
    }
}
} // namespace

double median (std::vector<double> values)
{
    std::sort (values.begin(), values.end());
    return values[values.size() / 2];
}

Cost measure (Shifter& shifter, double sampleRate, int size)
{
    const auto signal = material (sampleRate);
    const auto start = cpuSeconds();
    play (shifter, signal, size, [] (const auto& work) { work(); });
    Cost cost { cpuSeconds() - start, 0.0 };

    play (shifter, signal, size,
          [&] (const auto& work)
          {
              const auto before = cpuSeconds();
              work();
              cost.worstBlock = std::max (cost.worstBlock, (cpuSeconds() - before) * sampleRate / size);
          });

    return cost;
}

void compareShifters()
{
    std::printf (
        "CPU seconds for a second of stereo audio at %.1f kHz, blocks of %d, and the slowest block's share of its "
        "deadline\n%-18s",
        rate / 1000.0, blockSize, "semitones");

    for (const auto shift : shifts)
        std::printf ("%+16d", shift);

    const auto all = programs();
    std::vector<std::array<double, shifts.size()>> costs (all.size()), worst (all.size());

    for (std::size_t s = 0; s < shifts.size(); ++s)
    {
        std::vector<std::unique_ptr<Shifter>> running;
        std::vector<std::vector<double>> cost (all.size()), slowest (all.size());

        for (const auto& program : all)
        {
            running.push_back (program.start (rate, shifts[s]));
            measure (*running.back(), rate, blockSize); // until all have filled their pipelines
        }

        for (int round = 0; round < rounds; ++round)
        {
            for (std::size_t p = 0; p < all.size(); ++p)
            {
                const auto [cpuPerSecond, worstBlock] = measure (*running[p], rate, blockSize);
                cost[p].push_back (cpuPerSecond);
                slowest[p].push_back (worstBlock);
            }
        }

        for (std::size_t p = 0; p < all.size(); ++p)
        {
            costs[p][s] = median (cost[p]);
            worst[p][s] = median (slowest[p]);
        }
    }

    for (std::size_t p = 0; p < all.size(); ++p)
    {
        std::printf ("\n%-18s", all[p].name.c_str());

        for (std::size_t s = 0; s < shifts.size(); ++s)
            std::printf ("  %.5f (%.3f)", costs[p][s], worst[p][s]);

        std::printf ("\n%-18s", p == 0 ? "" : "  times ours");

        for (std::size_t s = 0; s < shifts.size() && p > 0; ++s)
            std::printf ("%16.1f", costs[p][s] / costs[0][s]);
    }

    std::printf ("\n\n");
}
} // namespace tarvelline::bench
