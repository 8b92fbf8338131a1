// SPDX-License-Identifier: GPL-3.0-or-later
// Whole blocks through the processor: idle, one voice and eight, at the rates with the shortest and the longest frames; at
// rest, with the timbre moved, and with a wheel that glides.
#include "bench/BenchSupport.h"
#include "processor/TarvellineAudioProcessor.h"

namespace tarvelline::bench
{
namespace
{
constexpr int channels = 2;
constexpr float voiceShift = 7.0f;   // semitones, of all voices
constexpr float timbreShift = -3.0f; // semitones against the pitch
constexpr double glideDepth = 5.0, glidesPerSecond = 2.0;

enum Wheels
{
    resting,
    withTimbre,
    gliding
};

/** Where a wheel's parameter stands; it spans 12 semitones either way as it comes. */
float wheelPosition (double semitones) { return static_cast<float> (0.5 + semitones / 24.0); }

/** Voices that all shift alike and start with the same sample, as no keyboard can make them, since a sample takes one MIDI
    event: all their frames fall on the same samples. That is the heaviest block there can be. */
void startVoices (TarvellineAudioProcessor& processor, int count)
{
    for (int v = 0; v < count; ++v)
        processor.voices.slots[static_cast<std::size_t> (v)] = {
            .active = true, .index = v, .level = 1.0f, .key = v, .semitones = voiceShift
        };
}

void processBlock (benchmark::State& state, Wheels wheels)
{
    const auto rate = static_cast<double> (state.range (1));
    const auto blockSize = static_cast<int> (state.range (2));

    TarvellineAudioProcessor processor;
    const auto parameter = [&](const char* id) -> auto& { return *processor.parameters.getParameter (id); };
    parameter (parameterId::toggleSize).setValueNotifyingHost (wheels == withTimbre ? 1.0f : 0.0f);
    parameter (parameterId::timbWheelPar).setValueNotifyingHost (wheelPosition (timbreShift));
    const auto signal = material (rate);
    const auto length = static_cast<int> (signal.size()) / blockSize * blockSize;
    juce::AudioBuffer<float> block (channels, blockSize);
    juce::MidiBuffer midi;
    auto& wheel = parameter (parameterId::mainWheelPar);
    int position = 0;
    const auto playBlock = [&]
    {
        for (int c = 0; c < channels; ++c)
            block.copyFrom (c, 0, signal.data() + position, blockSize);

        const auto phase = 2.0 * std::numbers::pi * glidesPerSecond * position / rate;
        wheel.setValue (wheelPosition (wheels == gliding ? glideDepth * std::sin (phase) : 0.0));
        processor.processBlock (block, midi);
        position = (position + blockSize) % length;
    };

    const auto restart = [&]
    {
        processor.midiTransposeMode = false; // one engine a voice
        processor.prepareToPlay (rate, blockSize);
        processor.midiTransposeMode = false;
        startVoices (processor, static_cast<int> (state.range (0)));
        position = 0;

        do
            playBlock(); // a second until the pipelines are full
        while (position != 0);
    };
    restart();
    BlockMeter (blockSize, rate).measure (state, playBlock, restart);
}

void overVoices (benchmark::internal::Benchmark* rows)
{
    rows->ArgNames ({ "voices", "rate", "block" })
        ->ArgsProduct ({ { 0, 1, 8 }, { 44100, 192000 }, { 64, 512 } })
        ->Unit (benchmark::kMicrosecond);
}

BENCHMARK_CAPTURE (processBlock, resting, resting)->Apply (overVoices);
BENCHMARK_CAPTURE (processBlock, timbre, withTimbre)->Apply (overVoices);
BENCHMARK_CAPTURE (processBlock, gliding, gliding)->Apply (overVoices);
} // namespace
} // namespace tarvelline::bench

int main (int argc, char** argv)
{
    const juce::ScopedJuceInitialiser_GUI framework;
    benchmark::Initialize (&argc, argv);

    if (benchmark::ReportUnrecognizedArguments (argc, argv))
        return 1;

    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
