// SPDX-License-Identifier: GPL-3.0-or-later
#include "bench/BenchSupport.h"
#include "bench/CompareShifters.h"
#include "engine/AlignedVector.h"
#include "engine/transform/HartleyTransform.h"
#include "tests/support/InstructionSets.h"

#include <fftw3.h>

#include <cstdio>
#include <functional>
#include <string>

namespace tarvelline::bench
{
namespace
{
constexpr int repetitions = 500, rounds = 31;

struct Contender
{
    std::string name;
    std::function<void()> copy, run;
    std::vector<double> nanoseconds;
};

double nanosecondsOf (const std::function<void()>& work)
{
    const auto start = std::clock();

    for (int i = 0; i < repetitions; ++i)
        work();

    return 1.0e9 * static_cast<double> (std::clock() - start) / CLOCKS_PER_SEC / repetitions;
}

void compareAt (int length)
{
    const auto size = static_cast<std::size_t> (length);
    const auto signal = material (44100.0);
    AlignedVector<float> data (size), spectrum (size + 2);
    const HartleyTransform hartley (length);
    const auto load = [&] { std::copy_n (signal.begin(), length, data.begin()); }; // in place the values would overflow

    auto* const bins = reinterpret_cast<fftwf_complex*> (spectrum.data());
    const auto dht = fftwf_plan_r2r_1d (length, data.data(), data.data(), FFTW_DHT, FFTW_MEASURE);
    const auto r2c = fftwf_plan_dft_r2c_1d (length, data.data(), bins, FFTW_MEASURE);

    std::vector<Contender> contenders { { "FFTW DHT", load, [&] { fftwf_execute (dht); }, {} },
                                        { "FFTW r2c", load, [&] { fftwf_execute (r2c); }, {} } };

    for (const auto& set : test::instructionSets())
        for (const auto forwards : { true, false })
            contenders.push_back ({ (forwards ? "forward " : "inverse ") + set,
                                    load,
                                    [&, forwards]
                                    { forwards ? hartley.forward (data.data()) : hartley.inverse (data.data()); },
                                    {} });

    for (int round = 0; round < rounds; ++round)
    {
        for (auto& contender : contenders)
        {
            const auto set = contender.name.substr (contender.name.find (' ') + 1);
            const test::OnInstructionSet held (set);
            const auto copying = nanosecondsOf (contender.copy);
            contender.nanoseconds.push_back (nanosecondsOf (
                                                 [&]
                                                 {
                                                     contender.copy();
                                                     contender.run();
                                                 })
                                             - copying);
        }
    }

    const auto yardstick = median (contenders.front().nanoseconds);

    for (const auto& contender : contenders)
        std::printf ("%6d  %-16s %8.0f ns  %5.2f times as fast as the DHT\n", length, contender.name.c_str(),
                     median (contender.nanoseconds), yardstick / median (contender.nanoseconds));

    fftwf_destroy_plan (dht);
    fftwf_destroy_plan (r2c);
}
} // namespace

void compareTransforms()
{
    std::printf ("Transforms of real single-precision data, reordering included\n");

    for (const auto length : { 2048, 4096, 8192 })
        compareAt (length);

    std::printf ("\n");
}
} // namespace tarvelline::bench
