// SPDX-License-Identifier: GPL-3.0-or-later
// Whole blocks through the processor: idle, one voice and eight, at the rates with the shortest and the longest frames.
#include "bench/BenchSupport.h"
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>

namespace tarvelline::bench
{
namespace
{
constexpr int channels = 2;

/** Struck together, so that their frames fall on the same samples: the heaviest block a chord can make. */
constexpr juce::uint8 chord[] = { 67, 48, 52, 55, 60, 64, 70, 72 };

void processBlock (benchmark::State& state)
{
    const auto voices = static_cast<int> (state.range (0));
    const auto rate = static_cast<double> (state.range (1));
    const auto blockSize = static_cast<int> (state.range (2));

    TarvellineAudioProcessor processor;
    processor.parameters.getParameter (parameterId::midiOptions)->setValueNotifyingHost (0.0f); // one engine a note
    processor.prepareToPlay (rate, blockSize);

    juce::MidiBuffer midi;

    for (int v = 0; v < voices; ++v)
        midi.addEvent (juce::MidiMessage::noteOn (1, chord[v], juce::uint8 { 100 }), 0);

    const auto signal = material (rate);
    const auto length = static_cast<int> (signal.size()) / blockSize * blockSize;
    juce::AudioBuffer<float> block (channels, blockSize);
    int position = 0;
    const auto playBlock = [&]
    {
        for (int c = 0; c < channels; ++c)
            block.copyFrom (c, 0, signal.data() + position, blockSize);

        processor.processBlock (block, midi);
        position = (position + blockSize) % length;
    };

    do
        playBlock(); // a second until every voice has faded in
    while (position != 0);

    const auto& slots = processor.voices.slots;

    if (std::count_if (slots.begin(), slots.end(), [] (const auto& slot) { return slot.active; }) != voices)
        state.SkipWithError ("not every note became a voice");

    BlockMeter (blockSize, rate).measure (state, playBlock);
}

BENCHMARK (processBlock)
    ->ArgNames ({ "voices", "rate", "block" })
    ->ArgsProduct ({ { 0, 1, 8 }, { 44100, 192000 }, { 64, 512 } })
    ->Unit (benchmark::kMicrosecond);
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
