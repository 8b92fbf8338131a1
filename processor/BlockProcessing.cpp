// SPDX-License-Identifier: GPL-3.0-or-later
// The audio path: wheels and MIDI, engines, and the mix with the delayed input, sample by sample.
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvelline
{
namespace
{
constexpr int maxChannels = PitchShiftEngine::maxChannels;
constexpr float outputFadesPerSecond = 5.0f;       // the master gain rises over 0.2 s
constexpr float dryFadesPerSecond = 20.0f;         // the change to and from the dry signal takes 50 ms
constexpr float restSemitones = 1.0e-10f;          // a shift below this is a wheel at rest in its centre
constexpr double bendScale = 6.103888176768602e-5; // 14 bits to 0..1: 1 / 16383

enum MidiStatus : int
{
    noteOff = 0x80,
    noteOn = 0x90,
    pitchBend = 0xe0
};
} // namespace

void TarvellineAudioProcessor::processBlock (juce::AudioBuffer<float>& buffer, juce::MidiBuffer& midi)
{
    const juce::ScopedNoDenormals flushDenormals;

    const double mainPosition = currentValue (parameters, parameterId::mainWheelPar);
    const double timbPosition = currentValue (parameters, parameterId::timbWheelPar);
    const auto mix = currentValue (parameters, parameterId::mixerPar);
    setTimbreInUse (currentValue (parameters, parameterId::toggleSize) != 0.0f);

    const auto channels = std::min (buffer.getNumChannels(), maxChannels);
    auto* const* samples = buffer.getArrayOfWritePointers();
    auto event = midi.cbegin();
    const auto handleNextEvent = [this, &event, end = midi.cend()]
    {
        if (event == end)
            return;

        handleMidiEvent ((*event).data, (*event).numBytes);
        ++event;
    };

    for (int i = 0; i < buffer.getNumSamples(); ++i)
    {
        smoothTarget (mainWheel, mainPosition);
        smoothTarget (timbWheel, timbPosition);
        handleNextEvent(); // one a sample, whatever its own position in the block
        movePoint (mainWheel);
        movePoint (timbWheel);

        std::array<float, maxChannels> dry {}, wet {};

        for (int c = 0; c < channels; ++c)
            dry[static_cast<std::size_t> (c)] = samples[c][i];

        const bool transpose = midiTransposeMode;

        if (transpose)
            voices.slots[0].semitones = 0.0f;
        else
            voices.advanceLevels();

        const float pitch = mainWheel.semitones, timbre = timbWheel.semitones;

        if (engine.isReady())
            engine.processFrame ({ pitch, timbre, transpose, toggleSizeOn }, voices.slots, dry.data(), wet.data(),
                                 channels);

        advanceFades (transpose && std::abs (pitch) < restSemitones && std::abs (timbre) < restSemitones);

        for (int c = 0; c < channels; ++c)
        {
            const auto channel = static_cast<std::size_t> (c);
            samples[c][i] = mixSample (wet[channel], engine.delayDry (c, dry[channel]), mix);
        }
    }

    handleNextEvent(); // one more after the last sample; what is left then is dropped
    midi.clear();
}

void TarvellineAudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    for (int c = 0; c < std::min (buffer.getNumChannels(), maxChannels); ++c)
        for (auto *sample = buffer.getWritePointer (c), *end = sample + buffer.getNumSamples(); sample != end; ++sample)
            *sample = engine.delayDry (c, *sample);
}

void TarvellineAudioProcessor::setTimbreInUse (bool shouldBeInUse) noexcept
{
    if (toggleSizeOn && ! shouldBeInUse)
        reanchor (timbWheel);

    toggleSizeOn = shouldBeInUse;
}

/** @param wheelsAtRest  both wheels exactly in the centre, in transpose mode: the dry signal takes over */
void TarvellineAudioProcessor::advanceFades (bool wheelsAtRest) noexcept
{
    if (const float gain = outputGain; gain < 1.0f)
        outputGain = std::min (gain + outputFadesPerSecond / sampleRate, 1.0f);

    const auto step = dryFadesPerSecond / sampleRate;
    dryCrossfade = wheelsAtRest ? std::min (dryCrossfade + step, 1.0f) : std::max (dryCrossfade - step, 0.0f);
}

float TarvellineAudioProcessor::mixSample (float wet, float dry, float mix) const noexcept
{
    // The larger of the two shares: the dry signal does not dip while one hands over to the other.
    const auto dryShare = std::max (1.0f - mix, dryCrossfade);
    return ((1.0f - dryCrossfade) * wet * mix + dryShare * dry) * outputGain;
}

void TarvellineAudioProcessor::handleMidiEvent (const juce::uint8* data, int size) noexcept
{
    if (size < 3)
        return;

    const int first = data[1], second = data[2];

    switch (data[0] & 0xf0) // on any channel
    {
        case noteOn: noteEvent (first, second > 0); break;
        case noteOff: noteEvent (first, false); break;
        case pitchBend: bendWheel (second * 128 + first); break;
        default: break;
    }
}

void TarvellineAudioProcessor::noteEvent (int noteNumber, bool isOn) noexcept
{
    if (! isOn)
    {
        voices.release (noteNumber); // the transposition stays at the last note
    }
    else if (midiTransposeMode)
    {
        lastNoteOffset = voices.transposeTo (noteNumber);
        mainWheel.midiOffset = lastNoteOffset;
    }
    else
    {
        voices.startVoice (noteNumber);
    }
}

void TarvellineAudioProcessor::bendWheel (int value14Bit) noexcept
{
    auto position = value14Bit * bendScale;
    const double steps = bendSteps;

    // Truncated, not rounded: a bend just short of a step stays on the inner one, so the wheel leans to its centre.
    if (steps > 0.0 && ! juce::ModifierKeys::currentModifiers.isShiftDown())
        position = std::trunc ((position - 0.5) * steps) / steps + 0.5;

    // Neither listeners nor the host are told; the next block reads it.
    parameters.getParameter (parameterId::mainWheelPar)->setValue (static_cast<float> (position));
}
} // namespace tarvelline
