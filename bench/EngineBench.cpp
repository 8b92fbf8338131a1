// SPDX-License-Identifier: GPL-3.0-or-later
// The transform alone, and one stereo engine over shifts: at rest, with the timbre moved, and gliding.
#include "bench/BenchSupport.h"
#include "engine/PitchShiftEngine.h"
#include "engine/transform/HartleyTransform.h"

#include <algorithm>

#if defined(__SSE2__)
    #include <xmmintrin.h>
#endif

namespace tarvelline::bench
{
namespace
{
/** The processor flushes denormals while it runs; the engine is measured as it runs there. */
void flushDenormals()
{
#if defined(__SSE2__)
    _mm_setcsr (_mm_getcsr() | 0x8040); // flush to zero, denormals are zero
#endif
}

enum Direction
{
    forward,
    inverse
};

void transform (benchmark::State& state, Direction direction)
{
    const auto length = static_cast<int> (state.range (0));
    const HartleyTransform hartley (length);
    const auto input = material (44100.0);
    std::vector<float> data (static_cast<std::size_t> (length));

    for (auto _ : state)
    {
        std::copy_n (input.begin(), length, data.begin()); // repeated in place the values would overflow
        direction == forward ? hartley.forward (data.data()) : hartley.inverse (data.data());
        benchmark::DoNotOptimize (data.data());
    }
}

/** One engine in stereo. The ratio glides by `depth` semitones either way, twice a second. */
void engineStereo (benchmark::State& state, double depth, float formantRatio)
{
    constexpr int rate = 44100, frameSize = 2048, blockSize = 64;
    flushDenormals();

    PitchShiftEngine engine;

    const auto signal = material (rate);
    std::vector<float> ratios (signal.size()), formantRatios (signal.size(), formantRatio);

    for (std::size_t i = 0; i < ratios.size(); ++i)
        ratios[i] = static_cast<float> (
            std::exp2 ((static_cast<double> (state.range (0))
                        + depth * std::sin (4.0 * std::numbers::pi * static_cast<double> (i) / rate))
                       / 12.0));

    std::size_t position = 0;
    const auto playBlock = [&]
    {
        float left[blockSize], right[blockSize];
        const float* const in[] = { signal.data() + position, signal.data() + position };
        float* const out[] = { left, right };
        engine.process ({ ratios.data() + position, formantRatios.data() + position, in, out, 2, blockSize });
        benchmark::DoNotOptimize (left);
        position = position + 2 * blockSize <= signal.size() ? position + blockSize : 0;
    };

    const auto restart = [&]
    {
        engine.prepare (frameSize, 1.0f, rate);
        position = 0;

        for (int warmUp = 0; warmUp < rate / blockSize; ++warmUp)
            playBlock();
    };
    restart();

    BlockMeter (blockSize, rate).measure (state, playBlock, restart);
}

BENCHMARK_CAPTURE (transform, forward, forward)->Arg (2048)->Arg (4096)->Arg (8192);
BENCHMARK_CAPTURE (transform, inverse, inverse)->Arg (2048)->Arg (4096)->Arg (8192);

void overShifts (benchmark::internal::Benchmark* rows)
{
    rows->ArgName ("semitones");

    for (const auto semitones : { -24, -12, -3, 0, 3, 7, 12, 24 })
        rows->Arg (semitones);
}

BENCHMARK_CAPTURE (engineStereo, resting, 0.0, 1.0f)->Apply (overShifts);
BENCHMARK_CAPTURE (engineStereo, timbre, 0.0, 1.2f)->Apply (overShifts);
BENCHMARK_CAPTURE (engineStereo, gliding, 5.0, 1.0f)->ArgName ("semitones")->Arg (7);
} // namespace
} // namespace tarvelline::bench

BENCHMARK_MAIN();
