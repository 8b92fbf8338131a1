// SPDX-License-Identifier: GPL-3.0-or-later
// The transform alone, and one stereo engine over pitch ratios.
#include "bench/BenchSupport.h"
#include "engine/transform/HartleyTransform.h"
#include "engine/PitchShiftEngine.h"

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

void transform (benchmark::State& state, void (HartleyTransform::*direction) (float*) const noexcept)
{
    const auto length = static_cast<int> (state.range (0));
    const HartleyTransform hartley (length);
    const auto input = material (44100.0);
    std::vector<float> data (static_cast<std::size_t> (length));

    for (auto _ : state)
    {
        std::copy_n (input.begin(), length, data.begin()); // repeated in place the values would overflow
        (hartley.*direction) (data.data());
        benchmark::DoNotOptimize (data.data());
    }
}

void engineStereo (benchmark::State& state)
{
    constexpr int rate = 44100, frameSize = 2048, blockSize = 64;
    flushDenormals();

    PitchShiftEngine engine;
    engine.prepare (frameSize, 1.0f, rate);
    engine.setRatios (static_cast<float> (state.range (0)) / 100.0f, 1.0f);

    const auto signal = material (rate);
    std::size_t position = 0;
    const auto playBlock = [&]
    {
        for (int i = 0; i < blockSize; ++i)
        {
            const float in[] = { signal[position], -signal[position] };
            float out[2];
            engine.processFrame (in, out, 2);
            benchmark::DoNotOptimize (out);
            position = (position + 1) % signal.size();
        }
    };

    for (int warmUp = 0; warmUp < rate / blockSize; ++warmUp)
        playBlock();

    BlockMeter (blockSize, rate).measure (state, playBlock);
}

BENCHMARK_CAPTURE (transform, forward, &HartleyTransform::forward)->Arg (2048)->Arg (4096)->Arg (8192);
BENCHMARK_CAPTURE (transform, inverse, &HartleyTransform::inverse)->Arg (2048)->Arg (4096)->Arg (8192);

BENCHMARK (engineStereo)->ArgName ("ratio_percent")->Arg (25)->Arg (50)->Arg (100)->Arg (150)->Arg (200)->Arg (400);
} // namespace
} // namespace tarvelline::bench

BENCHMARK_MAIN();
