// SPDX-License-Identifier: GPL-3.0-or-later
// A host that does anything between two blocks: parameters, MIDI bytes, block sizes, rates, layouts, bypass, state.
#include "fuzz/Require.h"
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <fuzzer/FuzzedDataProvider.h>

namespace tarvelline::fuzz
{
namespace
{
constexpr float loudest = 1.0e6f;       // +120 dBFS: a square of its magnitudes is still far from overflow
constexpr int anything = 4;             // the kind of samples that may be no numbers
constexpr int longestSession = 1 << 15; // samples: four latencies of the highest rates, and soon done

class Session
{
public:
    Session (const std::uint8_t* data, std::size_t size) : input (data, size) {}

    void run()
    {
        while (input.remaining_bytes() > 0 && samplesPlayed < longestSession)
            takeStep();
    }

private:
    void takeStep()
    {
        switch (input.ConsumeIntegralInRange (0, 6))
        {
            case 0: prepare(); break;
            case 1: moveParameter(); break;
            case 2: sendMidi(); break;
            case 3: restoreOwnState(); break;
            case 4: noise = input.ConsumeIntegral<std::uint32_t>(); break;
            case 5: processor.releaseResources(); break;
            default: playBlock (input.ConsumeBool()); break;
        }
    }

    void prepare()
    {
        const auto set = juce::AudioChannelSet::canonicalChannelSet (input.ConsumeIntegralInRange (1, 2));
        processor.setBusesLayout ({ { set }, { set } });
        processor.prepareToPlay (input.ConsumeFloatingPointInRange (8000.0, 384000.0),
                                 input.ConsumeIntegralInRange (0, 8192));
        cleanSamples = longestSession; // all that was is gone
    }

    // Any bits: a host may store what is no number.
    void moveParameter()
    {
        const auto& all = processor.getParameters();
        auto& parameter = *all[input.ConsumeIntegralInRange (0, all.size() - 1)];
        const auto value = input.ConsumeBool() ? input.ConsumeProbability<float>()
                                               : std::bit_cast<float> (input.ConsumeIntegral<std::uint32_t>());
        parameter.setValueNotifyingHost (value);
    }

    void sendMidi()
    {
        const auto bytes = input.ConsumeBytes<std::uint8_t> (input.ConsumeIntegralInRange<std::size_t> (1, 1000));
        const int position = input.ConsumeIntegral<std::int16_t>();

        if (! bytes.empty()) // the input was at its end
            midi.addEvent (bytes.data(), static_cast<int> (bytes.size()), position);
    }

    void restoreOwnState()
    {
        juce::MemoryBlock state;
        processor.getStateInformation (state);
        processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    }

    float sampleOf (int kind)
    {
        noise = noise * 1664525u + 1013904223u;
        const auto uniform = static_cast<float> (static_cast<std::int32_t> (noise)) / 2147483648.0f;

        switch (kind)
        {
            case 0: return 0.0f;
            case 1: return uniform;
            case 2: return uniform * loudest;
            case 3: return uniform * 1.0e-40f; // subnormal
            default: return std::bit_cast<float> (noise);
        }
    }

    void playBlock (bool bypassed)
    {
        const auto length =
            input.ConsumeBool() ? input.ConsumeIntegralInRange (0, 64) : input.ConsumeIntegralInRange (0, 9000);
        const auto kind = input.ConsumeIntegralInRange (0, anything);
        juce::AudioBuffer<float> block (processor.getTotalNumInputChannels(), length);

        for (int c = 0; c < block.getNumChannels(); ++c)
            for (int i = 0; i < length; ++i)
                block.setSample (c, i, sampleOf (kind));

        if (bypassed)
            processor.processBlockBypassed (block, midi);
        else
            processor.processBlock (block, midi);

        require (bypassed || midi.isEmpty(), "the MIDI is used up");
        midi.clear();
        cleanSamples = kind == anything ? 0 : cleanSamples + length;
        checkOutput (block);
        samplesPlayed += length + 1;
    }

    void checkOutput (const juce::AudioBuffer<float>& block) const
    {
        for (const auto* wheel : { &processor.mainWheel, &processor.timbWheel })
            require (std::isfinite (wheel->point) && std::isfinite (wheel->semitones), "the wheels are somewhere");

        // What is no number leaves by the dry path, one latency later, and stays nowhere.
        const auto dueFrom = block.getNumSamples() - (cleanSamples - processor.getLatencySamples());

        for (int c = 0; c < block.getNumChannels(); ++c)
            for (int i = std::max (dueFrom, 0); i < block.getNumSamples(); ++i)
                require (std::isfinite (block.getSample (c, i)), "finite in, finite out");
    }

    FuzzedDataProvider input;
    TarvellineAudioProcessor processor;
    juce::MidiBuffer midi;
    std::uint32_t noise = 1;
    int samplesPlayed = 0;
    int cleanSamples = longestSession; // since the last that may have been no number
};
} // namespace
} // namespace tarvelline::fuzz

int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    tarvelline::fuzz::Session (data, size).run();
    return 0;
}
