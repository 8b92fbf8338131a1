// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/EngineBank.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <numbers>

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

/** exp (x) in double precision, rounded once: within a hundredth of the last place of the true value. Made of nothing but
    sums, products and bits, so that a loop of it runs in vectors and every processor gives the same. */
inline float exponential (float exponent) noexcept
{
    constexpr auto integerShift = 6755399441055744.0; // 1.5 * 2^52: adding it rounds to an integer, in the low bits
    constexpr auto ln2 = std::numbers::ln2;
    constexpr auto furthest = 80.0f; // nothing overflows, and engines hold ratios far closer
    const double x = exponent < -furthest ? -furthest : exponent > furthest ? furthest : exponent;
    const auto shifted = x / ln2 + integerShift;
    const auto r = x - (shifted - integerShift) * ln2; // -0.35 .. 0.35
    auto series = 1.0 / 39916800.0;

    for (const auto coefficient : { 1.0 / 3628800.0, 1.0 / 362880.0, 1.0 / 40320.0, 1.0 / 5040.0, 1.0 / 720.0,
                                    1.0 / 120.0, 1.0 / 24.0, 1.0 / 6.0, 1.0 / 2.0, 1.0, 1.0 })
        series = series * r + coefficient;

    const auto power = std::bit_cast<std::uint64_t> (shifted) << 52; // added to the exponent
    return static_cast<float> (std::bit_cast<double> (std::bit_cast<std::uint64_t> (series) + power));
}

/** Semitones to frequency ratios. Most wheels rest most of the time: then one is enough. */
void toRatios (const float* semitones, float offset, float* ratios, int count) noexcept
{
    if (std::all_of (semitones, semitones + count, [=] (float s) { return s == semitones[0]; }))
        std::fill_n (ratios, count, exponential ((offset + semitones[0]) * semitoneToLog));
    else
        for (int i = 0; i < count; ++i)
            ratios[i] = exponential ((offset + semitones[i]) * semitoneToLog);
}
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

    for (auto& engine : engines)
    {
        auto fresh = std::make_unique<PitchShiftEngine>();
        fresh->prepare (resources);
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
    toRatios (run.pitchSemitones, voiceSemitones, pitchRatios.data(), count);
    formantRatios.fill (1.0f);

    if (run.timbreInUse)
    {
        // A voice's own shift moves its pitch and its timbre alike, so it cancels out of the formant ratio.
        toRatios (run.timbreSemitones, levels != nullptr ? voiceSemitones : 0.0f, formantRatios.data(), count);

        for (std::size_t i = 0; i < static_cast<std::size_t> (count); ++i)
            formantRatios[i] = pitchRatios[i] / formantRatios[i];
    }

    float* const outputs[] = { wet[0].data(), wet[1].data() };
    engines[static_cast<std::size_t> (number)]->process (
        { pitchRatios.data(), formantRatios.data(), run.in, outputs, run.channels, count });

    for (int c = 0; c < run.channels; ++c)
        for (int i = 0; i < count; ++i)
            run.out[c][i] += outputs[c][i] * (levels != nullptr ? std::max (levels[i], 0.0f) : 1.0f);
}
} // namespace tarvelline
