// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/EngineBank.h"
#include "engine/RealTime.h"
#include "processor/MidiVoices.h"
#include "processor/Parameters.h"
#include "processor/RelaxedAtomic.h"
#include "processor/WheelModel.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvelline
{
/** The effect as a host sees it: the parameters of parameterTable, one bus in and one out (both mono or both stereo), MIDI in.

    Signal flow, sample by sample: wheels and MIDI move the two shifts, the engine bank shifts the input, the result is
    mixed with the input delayed by the same latency.

    Threads: processBlock() and processBlockBypassed() run on the audio thread, and not both at once; prepareToPlay() on any,
            for it keeps blocks out while it builds; the editor on the message thread, and so in most hosts the calls for
            state. What the editor and audio both touch stands in the public section, as atomics.
    Real time: the two block functions neither allocate, lock nor call the system.
    Latency: 2048 samples up to 48 kHz, 4096 up to 96 kHz, 8192 above. */
class TarvellineAudioProcessor : public juce::AudioProcessor, private juce::AudioProcessorParameter::Listener
{
public:
    TarvellineAudioProcessor();
    ~TarvellineAudioProcessor() override;

    const juce::String getName() const override { return "Tarvelline"; }

    /** Builds the engines for the rate (one that is none counts as 44100 Hz), at rest where the wheels' parameters stand. The
        block size is not used. Blocks that a host plays meanwhile, under the callback lock as wrappers do, are silent. */
    void prepareToPlay (double newSampleRate, int samplesPerBlock) override;
    void releaseResources() override {}

    using juce::AudioProcessor::processBlock;
    using juce::AudioProcessor::processBlockBypassed;

    /** One or two channels in place. Each sample takes at most one MIDI event; events past the last sample's, but one, are
        dropped. The MIDI buffer comes back empty. */
    void processBlock (juce::AudioBuffer<float>&, juce::MidiBuffer&) TARVELLINE_REAL_TIME override;

    /** The input, late by the latency. Wheels, voices and engines stand still; MIDI is ignored. */
    void processBlockBypassed (juce::AudioBuffer<float>&, juce::MidiBuffer&) TARVELLINE_REAL_TIME override;

    double getTailLengthSeconds() const override { return 0.0; }
    bool acceptsMidi() const override { return true; }
    bool producesMidi() const override { return false; }
    bool isMidiEffect() const override { return false; }

    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override { return true; }

    int getNumPrograms() override { return 1; }
    int getCurrentProgram() override { return 0; }
    void setCurrentProgram (int) override {}
    const juce::String getProgramName (int) override { return {}; }
    void changeProgramName (int, const juce::String&) override {}

    /** The state: one XML element in the framework's binary envelope (see StatePersistence.cpp). */
    void getStateInformation (juce::MemoryBlock& destData) override;

    /** Takes a saved state; anything that is not one changes nothing. */
    void setStateInformation (const void* data, int sizeInBytes) override;

    bool isBusesLayoutSupported (const BusesLayout&) const override;

    /** A note-on (with any velocity above 0), a note-off or a pitch-bend on any channel; other messages are ignored.
        Audio thread.
        @param data  the message's bytes, @param size  how many */
    void handleMidiEvent (const juce::uint8* data, int size) noexcept;

    juce::AudioProcessorValueTreeState parameters;

    // What the editor touches on the message thread while audio runs.
    RelaxedAtomic<int> uiHeight { 0 }; // editor height in pixels, 0 = never open; written by the editor, saved
    WheelRecord mainWheel, timbWheel;  // moved by the audio thread; the editor reads the points, sets physics
    RelaxedAtomic<bool> midiTransposeMode { true }; // notes transpose the main wheel; written by the editor
    RelaxedAtomic<float> outputGain { 1.0f };       // master fade-in; the editor restarts it with 0
    MidiVoices voices;                              // the editor reads keyLit and clears keysChanged
    RelaxedAtomic<double> bendSteps { 0.0 };        // pitch-bend quantisation, 0 = none; written by the editor

private:
    /** Keeps the sounding shift where it is when a wheel's span changes. Any thread, under the parameter's own lock. */
    void parameterValueChanged (int index, float) override;
    void parameterGestureChanged (int, bool) override {}

    void refreshWheelSettings();
    void refreshWheel (WheelRecord&, juce::StringRef wheelId, juce::StringRef rangeId, juce::StringRef inertiaId,
                       juce::StringRef gravityId, juce::StringRef smoothId);
    void keepShiftForRange (WheelRecord&, RelaxedAtomic<float>& lastRange, juce::StringRef wheelId,
                            juce::StringRef rangeId);
    void setTimbreInUse (bool shouldBeInUse) noexcept;
    void noteEvent (int noteNumber, bool isOn) noexcept;
    void bendWheel (int value14Bit) noexcept;
    struct Run;
    void shiftRun (Run&) noexcept;
    void fadeRun (Run&) noexcept;
    void mixRun (Run&, float mix) noexcept;

    RelaxedAtomic<float> lastMainRange { -1.0f }, lastTimbRange { -1.0f }; // selectors as last told of; negative before
    BlockParameters blockParameters;
    EngineBank engine;
    bool toggleSizeOn = false;   // the timbre wheel is in use, as of the last block
    float dryCrossfade = 0.0f;   // 0 = normal mix, 1 = the delayed dry signal alone
    float sampleRate = 44100.0f; // Hz, of the last prepareToPlay

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TarvellineAudioProcessor)
};
} // namespace tarvelline
