// SPDX-License-Identifier: GPL-3.0-or-later
// The programs, each wrapped the way its documentation says for live use.
#include "bench/CompareShifters.h"
#include "processor/TarvellineAudioProcessor.h"

#include <rubberband/RubberBandStretcher.h>
#include <soundtouch/SoundTouch.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tarvelline::bench
{
namespace
{
constexpr int largestBlock = 4096;
constexpr int middleC = 60;        // a note that shifts nothing
constexpr double wheelSpan = 24.0; // semitones from end to end, as a wheel comes

class Tarvelline final : public Shifter
{
public:
    Tarvelline (double rate, const std::vector<int>& semitones, double timbre)
    {
        const auto set = [this] (const char* id, double value)
        { processor.parameters.getParameter (id)->setValueNotifyingHost (static_cast<float> (value)); };
        set (parameterId::toggleSize, timbre != 0.0 ? 1.0 : 0.0);
        set (parameterId::timbWheelPar, 0.5 + timbre / wheelSpan);
        processor.midiTransposeMode = false;
        processor.prepareToPlay (rate, largestBlock);
        processor.midiTransposeMode = false;

        for (const auto shift : semitones)
            midi.addEvent (juce::MidiMessage::noteOn (1, middleC + shift, juce::uint8 { 100 }), 0);
    }

    void process (const float* const* in, float* const* out, int frames) override
    {
        for (int c = 0; c < channels; ++c)
            std::copy_n (in[c], frames, out[c]);

        juce::AudioBuffer<float> block (out, channels, frames);
        processor.processBlock (block, midi);
    }

private:
    TarvellineAudioProcessor processor;
    juce::MidiBuffer midi;
};

/** With the option that lets the pitch move while it sounds without a break, as a wheel moves it. */
class RubberBand final : public Shifter
{
    using Stretcher = ::RubberBand::RubberBandStretcher;

public:
    RubberBand (double rate, double semitones, Stretcher::Options engine)
        : stretcher (static_cast<std::size_t> (rate), channels,
                     Stretcher::OptionProcessRealTime | Stretcher::OptionThreadingNever
                         | Stretcher::OptionPitchHighConsistency | engine,
                     1.0, std::exp2 (semitones / 12.0))
    {
    }

    void process (const float* const* in, float* const* out, int frames) override
    {
        stretcher.process (in, static_cast<std::size_t> (frames), false);
        stretcher.retrieve (out, static_cast<std::size_t> (std::clamp (stretcher.available(), 0, frames)));
    }

private:
    Stretcher stretcher;
};

class SoundTouch final : public Shifter
{
public:
    SoundTouch (double rate, double semitones)
    {
        touch.setSampleRate (static_cast<unsigned> (rate));
        touch.setChannels (channels);
        touch.setPitchSemiTones (semitones);
    }

    void process (const float* const* in, float* const*, int frames) override
    {
        for (int i = 0; i < frames; ++i)
            for (int c = 0; c < channels; ++c)
                interleaved[static_cast<std::size_t> (i * channels + c)] = in[c][i];

        touch.putSamples (interleaved.data(), static_cast<unsigned> (frames));
        touch.receiveSamples (interleaved.data(), static_cast<unsigned> (frames));
    }

private:
    soundtouch::SoundTouch touch;
    std::array<float, channels * largestBlock> interleaved;
};
} // namespace

std::unique_ptr<Shifter> startVoices (double rate, const std::vector<int>& semitones, double timbre)
{
    return std::make_unique<Tarvelline> (rate, semitones, timbre);
}

std::vector<Program> programs()
{
    const auto rubberBand = [] (int engine)
    {
        return [engine] (double rate, double semitones) -> std::unique_ptr<Shifter>
        { return std::make_unique<RubberBand> (rate, semitones, engine); };
    };

    return { { "Tarvelline", [] (double rate, double semitones)
               { return startVoices (rate, { juce::roundToInt (semitones) }, 0.0); } },
             { "Rubber Band R3", rubberBand (::RubberBand::RubberBandStretcher::OptionEngineFiner) },
             { "Rubber Band R2", rubberBand (::RubberBand::RubberBandStretcher::OptionEngineFaster) },
             { "SoundTouch",
               [] (double rate, double semitones) { return std::make_unique<SoundTouch> (rate, semitones); } } };
}
} // namespace tarvelline::bench
