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

/** Semitones to a frequency ratio. Keeps the last answer: most wheels rest most of the time. */
class RatioOfSemitones
{
public:
    float operator() (float semitones) noexcept
    {
        if (semitones != last)
        {
            last = semitones;
            ratio = std::exp (semitones * semitoneToLog);
        }

        return ratio;
    }

private:
    float last = 0.0f, ratio = 1.0f;
};
} // namespace

void EngineBank::setSampleRate (float hertz) noexcept
{
    sampleRate = hertz >= 1.0f && std::isfinite (hertz) ? hertz : 44100.0f;
}

void EngineBank::rebuildEngines()
{
    ready = false;
    destroyEngines();

    const auto choice = frameChoiceFor (sampleRate);
    frameSize = choice.frameSize;

    for (auto& line : dryLines)
        line.resize (frameSize);

    const auto resources = std::make_shared<EngineResources> (frameSize, sampleRate * choice.scalePerHz, sampleRate);

    for (std::size_t i = 0; i < engines.size(); ++i)
    {
        auto fresh = std::make_unique<PitchShiftEngine>();
        fresh->prepare (resources, static_cast<float> (i + 1) / static_cast<float> (engines.size() + 1));
        engines[i] = std::move (fresh);
    }

    ready = true;
}

void EngineBank::destroyEngines() noexcept
{
    ready = false;

    for (auto& engine : engines)
        engine.reset();
}

void EngineBank::process (const BankRun& run, VoiceSlots& voices,
                          const VoiceLevels& levels) noexcept TARVELLINE_REAL_TIME
{
    assert (ready && run.count <= longestRun);

    for (int c = 0; c < run.channels; ++c)
        std::fill_n (run.out[c], run.count, 0.0f);

    if (run.transposeMode)
    {
        runVoice (run, 0, voices[0].semitones, nullptr, run.count);
        return;
    }

    for (std::size_t slot = 0; slot < voices.size(); ++slot)
    {
        const auto& voice = levels.voices[slot];

        if (voice.activeSamples == 0)
            continue;

        runVoice (run, voices[slot].index, voices[slot].semitones, voice.levels.data(), voice.activeSamples);
    }
}

/** @param levels  nullptr: full gain, as the one engine of transpose mode has it, whose timbre follows the wheel alone */
void EngineBank::runVoice (const BankRun& run, int number, float voiceSemitones, const float* levels,
                           int count) noexcept
{
    std::array<float, longestRun> pitchRatios, formantRatios, wet[PitchShiftEngine::maxChannels];
    RatioOfSemitones pitchRatio, timbreRatio;

    for (std::size_t i = 0; i < static_cast<std::size_t> (count); ++i)
    {
        pitchRatios[i] = pitchRatio (voiceSemitones + run.pitchSemitones[i]);
        formantRatios[i] = run.timbreInUse ? pitchRatios[i] : 1.0f;

        // A voice's own shift moves its pitch and its timbre alike, so it cancels out of the formant ratio.
        if (run.timbreInUse)
            formantRatios[i] /=
                timbreRatio (levels != nullptr ? voiceSemitones + run.timbreSemitones[i] : run.timbreSemitones[i]);
    }

    float* const outputs[] = { wet[0].data(), wet[1].data() };
    engines[static_cast<std::size_t> (number)]->process (
        { pitchRatios.data(), formantRatios.data(), run.in, outputs, run.channels, count });

    for (int c = 0; c < run.channels; ++c)
        for (int i = 0; i < count; ++i)
            run.out[c][i] += outputs[c][i] * (levels != nullptr ? std::max (levels[i], 0.0f) : 1.0f);
}
} // namespace tarvelline
