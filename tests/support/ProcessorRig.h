// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/TarvellineAudioProcessor.h"
#include "tests/support/Signals.h"

#include <algorithm>
#include <cmath>

namespace tarvelline::test
{
/** What three semitones up sound like at 44.1 kHz. The engine works in hops of whole samples, so its shifts are ratios of
    such: 256 samples in for 215 out, where 300 cents would need 215.27. */
inline const double upThreeCents = 1200.0 * std::log2 (256.0 / 215.0);

/** Plays a signal through all channels of a processor, or of a module in a host, in blocks; the MIDI goes to the first.
    @returns what the first channel gave */
inline Samples playThrough (juce::AudioProcessor& processor, juce::MidiBuffer& midi, const Samples& input,
                            int blockSize = 512, bool bypassed = false)
{
    Samples output (input.size());
    const auto length = static_cast<int> (input.size());
    juce::AudioBuffer<float> block (processor.getTotalNumInputChannels(), blockSize);

    for (int start = 0; start < length; start += blockSize)
    {
        const auto size = std::min (blockSize, length - start);
        block.setSize (block.getNumChannels(), size, false, false, true);

        for (int c = 0; c < block.getNumChannels(); ++c)
            block.copyFrom (c, 0, input.data() + start, size);

        if (bypassed)
            processor.processBlockBypassed (block, midi);
        else
            processor.processBlock (block, midi);

        midi.clear();
        std::copy_n (block.getReadPointer (0), size, output.begin() + start);
    }

    return output;
}

/** A processor and what a host does with it. */
struct ProcessorRig
{
    explicit ProcessorRig (double sampleRate = 44100.0, int channels = 2) : rate (sampleRate)
    {
        const auto set = juce::AudioChannelSet::canonicalChannelSet (channels);
        processor.setBusesLayout ({ { set }, { set } });
    }

    juce::RangedAudioParameter& parameter (const char* id) { return *processor.parameters.getParameter (id); }

    /** Moves a parameter the way a host does; `value` in the parameter's own units. */
    void set (const char* id, float value)
    {
        parameter (id).setValueNotifyingHost (parameter (id).convertTo0to1 (value));
    }

    float get (const char* id) { return parameter (id).convertFrom0to1 (parameter (id).getValue()); }

    void prepare() { processor.prepareToPlay (rate, 512); }

    /** Puts an event into the MIDI buffer of the next block. */
    void send (std::initializer_list<juce::uint8> bytes)
    {
        midi.addEvent (std::data (bytes), static_cast<int> (bytes.size()), 0);
    }

    Samples play (const Samples& input, int blockSize = 512, bool bypassed = false)
    {
        return playThrough (processor, midi, input, blockSize, bypassed);
    }

    /** A block of silence, possibly of no samples at all. */
    void playBlock (int size)
    {
        juce::AudioBuffer<float> block (processor.getTotalNumInputChannels(), size);
        block.clear();
        processor.processBlock (block, midi);
    }

    TarvellineAudioProcessor processor;
    juce::MidiBuffer midi;
    double rate;
};

/** Keeps what a host is told. */
struct HostEar : juce::AudioProcessorListener
{
    explicit HostEar (juce::AudioProcessor& p) : processor (p) { processor.addListener (this); }
    ~HostEar() override { processor.removeListener (this); }

    void audioProcessorParameterChanged (juce::AudioProcessor*, int index, float) override
    {
        changedParameters.push_back (index);
    }
    void audioProcessorChanged (juce::AudioProcessor*, const ChangeDetails& details) override
    {
        latencyChanges += details.latencyChanged ? 1 : 0;
    }

    juce::AudioProcessor& processor;
    std::vector<int> changedParameters;
    int latencyChanges = 0;
};
} // namespace tarvelline::test
