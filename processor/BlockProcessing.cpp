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

/** Some samples of a block on their way: the wheels have moved, the engines sound, all is mixed. */
struct TarvellineAudioProcessor::Run
{
    Run (juce::AudioBuffer<float>& buffer, int start, int length)
        : channels (std::min (buffer.getNumChannels(), maxChannels)), count (length)
    {
        for (int c = 0; c < channels; ++c)
            samples[static_cast<std::size_t> (c)] = buffer.getWritePointer (c, start);
    }

    int channels, count;
    bool transpose = true;
    std::array<float*, maxChannels> samples {};                    // of the block
    std::array<float, longestRun> pitch, timbre;                   // semitones, after each sample's step
    std::array<std::array<float, longestRun>, maxChannels> wet {}; // what the engines gave
    std::array<float, longestRun> gain, crossfade;                 // of the output; to the dry signal, where 1 is all
};

void TarvellineAudioProcessor::processBlock (juce::AudioBuffer<float>& buffer,
                                             juce::MidiBuffer& midi) TARVELLINE_REAL_TIME
{
    const juce::ScopedNoDenormals flushDenormals;

    const double mainPosition = currentValue (*blockParameters.mainWheel);
    const double timbPosition = currentValue (*blockParameters.timbWheel);
    const auto mix = currentValue (*blockParameters.mixer);
    setTimbreInUse (currentValue (*blockParameters.toggleSize) != 0.0f);

    auto event = midi.cbegin();
    const auto lastEvent = midi.cend();
    const auto handleNextEvent = [this, &event, lastEvent]
    {
        if (event == lastEvent)
            return;

        handleMidiEvent ((*event).data, (*event).numBytes);
        ++event;
    };

    for (int done = 0; done < buffer.getNumSamples();)
    {
        Run run { buffer, done, std::min (buffer.getNumSamples() - done, longestRun) };

        if (event != lastEvent) // one a sample, whatever its own position in the block
        {
            run.count = 1;
            handleNextEvent();
        }

        moveWheel (mainWheel, mainPosition, run.pitch.data(), run.count);
        moveWheel (timbWheel, timbPosition, run.timbre.data(), run.count);
        shiftRun (run);
        fadeRun (run);
        mixRun (run, mix);
        done += run.count;
    }

    handleNextEvent(); // one more after the last sample; what is left then is dropped
    midi.clear();
}

/** Lets the engines sound the run, out of `samples` into `wet`. */
void TarvellineAudioProcessor::shiftRun (Run& run) noexcept
{
    VoiceLevels levels;
    run.transpose = midiTransposeMode;

    if (run.transpose)
        voices.slots[0].semitones = 0.0f;
    else
        voices.advanceLevels (levels, run.count);

    float* const wet[] = { run.wet[0].data(), run.wet[1].data() };

    if (engine.isReady() && run.channels > 0)
        engine.process ({ run.pitch.data(), run.timbre.data(), run.transpose, toggleSizeOn, run.samples.data(), wet,
                          run.channels, run.count },
                        voices.slots, levels);
}

/** Carries both fades on, sample by sample. */
void TarvellineAudioProcessor::fadeRun (Run& run) noexcept
{
    const auto gainStep = outputFadesPerSecond / sampleRate, crossfadeStep = dryFadesPerSecond / sampleRate;
    const float startGain = outputGain;
    auto gain = startGain;

    for (int i = 0; i < run.count; ++i)
    {
        const auto sample = static_cast<std::size_t> (i);
        gain = gain < 1.0f ? std::min (gain + gainStep, 1.0f) : gain;
        run.gain[sample] = gain;

        // Both wheels exactly in the centre, in transpose mode: the dry signal takes over.
        const auto atRest = run.transpose && std::abs (run.pitch[sample]) < restSemitones
                            && std::abs (run.timbre[sample]) < restSemitones;
        dryCrossfade =
            atRest ? std::min (dryCrossfade + crossfadeStep, 1.0f) : std::max (dryCrossfade - crossfadeStep, 0.0f);
        run.crossfade[sample] = dryCrossfade;
    }

    if (gain != startGain) // otherwise the editor may be restarting the fade at this moment
        outputGain = gain;
}

/** Replaces the run's samples by the mix of what the engines made of them with the delayed input. */
void TarvellineAudioProcessor::mixRun (Run& run, float mix) noexcept
{
    for (int c = 0; c < run.channels; ++c)
    {
        auto* samples = run.samples[static_cast<std::size_t> (c)];
        const auto* wet = run.wet[static_cast<std::size_t> (c)].data();
        engine.delayDry (c, samples, run.count);

        for (int i = 0; i < run.count; ++i)
        {
            const auto sample = static_cast<std::size_t> (i);
            const auto crossfade = run.crossfade[sample];

            // The larger of the two shares: the dry signal does not dip while one hands over to the other.
            const auto dryShare = std::max (1.0f - mix, crossfade);
            samples[i] = ((1.0f - crossfade) * wet[i] * mix + dryShare * samples[i]) * run.gain[sample];
        }
    }
}

void TarvellineAudioProcessor::processBlockBypassed (juce::AudioBuffer<float>& buffer,
                                                     juce::MidiBuffer&) TARVELLINE_REAL_TIME
{
    for (int c = 0; c < std::min (buffer.getNumChannels(), maxChannels); ++c)
        engine.delayDry (c, buffer.getWritePointer (c), buffer.getNumSamples());
}

void TarvellineAudioProcessor::setTimbreInUse (bool shouldBeInUse) noexcept
{
    if (toggleSizeOn && ! shouldBeInUse)
        reanchor (timbWheel);

    toggleSizeOn = shouldBeInUse;
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
        voices.release (noteNumber); // the transposition stays at the last note
    else if (midiTransposeMode)
        mainWheel.midiOffset = voices.transposeTo (noteNumber);
    else
        voices.startVoice (noteNumber);
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
