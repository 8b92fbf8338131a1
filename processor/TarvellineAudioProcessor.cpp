// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr double referenceRate = 44100.0; // Hz: the rate that the wheels' per-sample constants are written for
constexpr double lowestRate = 1.0, highestRate = 1.0e9; // Hz: what a host gives beyond these is no rate

/** Waits for the block that runs and keeps further ones out while it lives. */
class Pause
{
public:
    explicit Pause (juce::AudioProcessor& p) : processor (p) { processor.suspendProcessing (true); }
    ~Pause() { processor.suspendProcessing (wasSuspended); }

private:
    juce::AudioProcessor& processor;
    const bool wasSuspended = processor.isSuspended();
};
} // namespace

TarvellineAudioProcessor::TarvellineAudioProcessor()
    : AudioProcessor (BusesProperties()
                          .withInput ("Input", juce::AudioChannelSet::stereo(), true)
                          .withOutput ("Output", juce::AudioChannelSet::stereo(), true)),
      parameters (*this, nullptr)
{
    createParameters (parameters);
    blockParameters = BlockParameters (parameters);
    parameters.state = juce::ValueTree ("Tarvelline_0");

    // To the parameters themselves: the tree's lists of listeners, from JUCE 8 on, allocate in their first call.
    parameters.getParameter (parameterId::mainRange)->addListener (this);
    parameters.getParameter (parameterId::timbRange)->addListener (this);
}

TarvellineAudioProcessor::~TarvellineAudioProcessor() = default;

bool TarvellineAudioProcessor::isBusesLayoutSupported (const BusesLayout& layouts) const
{
    const auto out = layouts.getMainOutputChannelSet();

    if (out != juce::AudioChannelSet::mono() && out != juce::AudioChannelSet::stereo())
        return false;

    return layouts.getMainInputChannelSet() == out;
}

void TarvellineAudioProcessor::prepareToPlay (double newSampleRate, int)
{
    const Pause pause (*this); // a careless host prepares amid a block
    const auto rate = newSampleRate >= lowestRate && newSampleRate <= highestRate ? newSampleRate : referenceRate;
    const auto timeScale = static_cast<float> (referenceRate / rate);

    mainWheel.timeScale = timeScale;
    timbWheel.timeScale = timeScale;
    refreshWheelSettings();

    sampleRate = static_cast<float> (rate);
    engine.setSampleRate (sampleRate);
    engine.rebuildEngines();
    setLatencySamples (engine.getFrameSize()); // tells the host only of a change

    reanchor (mainWheel);
    reanchor (timbWheel);
    voices.prepare (engine.getFrameSize(), sampleRate);
    dryCrossfade = 0.0f;
}

/** Re-reads every wheel parameter and the MIDI mode, and puts both wheels to rest where their parameters stand. */
void TarvellineAudioProcessor::refreshWheelSettings()
{
    using namespace parameterId;
    refreshWheel (mainWheel, mainWheelPar, mainRange, mainInertiaPar, mainGravityPar, mainSmoothPar);
    midiTransposeMode = currentValue (parameters, midiOptions) != 0.0f;
    refreshWheel (timbWheel, timbWheelPar, timbRange, timbInertiaPar, timbGravityPar, timbSmoothPar);
}

void TarvellineAudioProcessor::refreshWheel (WheelRecord& wheel, juce::StringRef wheelId, juce::StringRef rangeId,
                                             juce::StringRef inertiaId, juce::StringRef gravityId,
                                             juce::StringRef smoothId)
{
    setInertia (wheel, currentValue (parameters, inertiaId));
    setGravity (wheel, currentValue (parameters, gravityId));
    setSmooth (wheel, currentValue (parameters, smoothId));
    placeWheel (wheel, currentValue (parameters, wheelId), spanForRange (currentValue (parameters, rangeId)));
}

void TarvellineAudioProcessor::parameterValueChanged (int index, float)
{
    using namespace parameterId;

    if (index == parameterIndex (mainRange))
        keepShiftForRange (mainWheel, lastMainRange, mainWheelPar, mainRange);
    else if (index == parameterIndex (timbRange))
        keepShiftForRange (timbWheel, lastTimbRange, timbWheelPar, timbRange);
}

void TarvellineAudioProcessor::keepShiftForRange (WheelRecord& wheel, RelaxedAtomic<float>& lastRange,
                                                  juce::StringRef wheelId, juce::StringRef rangeId)
{
    const auto range = currentValue (parameters, rangeId);

    if (range == lastRange) // told of again, as a restored state does it: nothing stops the wheel
        return;

    lastRange = range;
    const auto ratio = setRange (wheel, spanForRange (range));
    const auto position = ratio * (static_cast<double> (currentValue (parameters, wheelId)) - 0.5) + 0.5;
    auto* parameter = parameters.getParameter (wheelId);

    parameter->setValueNotifyingHost (parameter->convertTo0to1 (static_cast<float> (std::clamp (position, 0.0, 1.0))));
    reanchor (wheel);
}
} // namespace tarvelline
