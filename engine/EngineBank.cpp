// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineBank.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace tarvelline
{
namespace
{
constexpr float semitoneToLog = 0.05776231f; // ln 2 / 12: exp() of it times 12 is an octave

/** From this rate down a frame has `frameSize` samples; `scalePerHz` makes the engine's frequency scale. */
struct FrameChoice
{
    float highestRate; // Hz
    int frameSize;
    float scalePerHz;
};

constexpr FrameChoice frameChoices[] = {
    { 48000.0f, 2048, 2.2675737e-5f }, // 1 / 44100
    { 96000.0f, 4096, 1.5625e-5f },    // 1 / 64000
};
constexpr FrameChoice highestChoice { 0.0f, 8192, 1.0416667e-5f }; // 1 / 96000

FrameChoice frameChoiceFor (float sampleRate) noexcept
{
    for (const auto& choice : frameChoices)
        if (sampleRate <= choice.highestRate)
            return choice;

    return highestChoice;
}

float ratioOf (float semitones) noexcept { return std::exp (semitones * semitoneToLog); }
} // namespace

void EngineBank::setSampleRate (float hertz) noexcept
{
    sampleRate = hertz > 0.0f && std::isfinite (hertz) ? hertz : 44100.0f;
}

int EngineBank::frameSizeFor (float sampleRate) noexcept { return frameChoiceFor (sampleRate).frameSize; }

void EngineBank::rebuildEngines()
{
    ready = false;
    destroyEngines();

    const auto choice = frameChoiceFor (sampleRate);
    frameSize = choice.frameSize;

    for (auto& line : dryLines)
        line.resize (frameSize);

    for (auto& engine : engines)
    {
        auto fresh = std::make_unique<PitchShiftEngine>();
        fresh->prepare (frameSize, sampleRate * choice.scalePerHz, sampleRate);
        engine = std::move (fresh);
    }

    ready = true;
}

void EngineBank::destroyEngines() noexcept
{
    ready = false;

    for (auto& engine : engines)
        engine.reset();
}

void EngineBank::processFrame (const FrameControls& controls, VoiceSlots& voices, const float* in, float* out,
                               int channels) noexcept
{
    assert (ready);
    std::fill_n (out, channels, 0.0f);

    // A voice's own shift moves its pitch and its timbre alike, so it cancels out of the formant ratio.
    const auto run = [&] (int number, float voiceSemitones, float timbreSemitones, float gain)
    {
        const auto pitchRatio = ratioOf (voiceSemitones + controls.pitchSemitones);
        const auto formantRatio = controls.timbreInUse ? pitchRatio / ratioOf (timbreSemitones) : 1.0f;
        runEngine (number, pitchRatio, formantRatio, gain, in, out, channels);
    };

    if (controls.transposeMode)
    {
        run (0, voices[0].semitones, controls.timbreSemitones, 1.0f);
        return;
    }

    for (auto& voice : voices)
    {
        if (! voice.active)
            continue;

        voice.started = false;
        run (voice.index, voice.semitones, voice.semitones + controls.timbreSemitones, std::max (voice.level, 0.0f));
    }
}

void EngineBank::runEngine (int number, float pitchRatio, float formantRatio, float gain, const float* in, float* out,
                            int channels) noexcept
{
    auto& engine = *engines[static_cast<std::size_t> (number)];
    float wet[PitchShiftEngine::maxChannels] {};

    engine.setRatios (pitchRatio, formantRatio);
    engine.processFrame (in, wet, channels);

    for (int c = 0; c < channels; ++c)
        out[c] += wet[c] * gain;
}
} // namespace tarvelline
