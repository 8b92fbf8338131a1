// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/DelayLine.h"
#include "engine/PitchShiftEngine.h"
#include "engine/VoiceSlot.h"

#include <array>
#include <memory>

namespace tarvelline
{
/** A run of samples, at most `longestRun`, through the bank: one value a sample in every array. */
struct BankRun
{
    const float *pitchSemitones, *timbreSemitones;
    bool transposeMode;     // one engine, transposed; otherwise one engine a held note
    bool timbreInUse;       // otherwise the envelope moves with the pitch
    const float* const* in; // a pointer a channel, as is out; the two do not overlap
    float* const* out;
    int channels; // 1 or 2
    int count;
};

/** Eight pitch-shift engines, one a voice, and the dry path that is delayed to match them.

    Frame length N (and so the latency, in samples): 2048 up to 48 kHz, 4096 up to 96 kHz, 8192 above.
    Threads: setSampleRate(), rebuildEngines() and destroyEngines() while audio is stopped; processing and the delay lines
            on the audio thread. Real time: neither of these two allocates, locks or throws.
    Errors: when memory runs out rebuildEngines() throws std::bad_alloc and the bank stays not ready. */
class EngineBank
{
public:
    /** @param hertz  the host's rate; anything that is not finite and at least 1 is taken as 44100 */
    void setSampleRate (float hertz) noexcept;

    /** Builds eight fresh engines and the dry lines for the stored sample rate. */
    void rebuildEngines();

    void destroyEngines() noexcept;

    bool isReady() const noexcept { return ready; }
    int getFrameSize() const noexcept { return frameSize; }

    /** A run of samples in, the sum of all sounding voices out; call it only when ready.
        In voice mode every slot runs its engine while it is active and is added with its level (none while that is below
        zero); in transpose mode engine 0 alone runs, at full gain.
        @param levels  read in voice mode only */
    void process (const BankRun&, VoiceSlots&, const VoiceLevels& levels) noexcept TARVELLINE_REAL_TIME;

    /** The dry signal of a channel, N samples late: keeps the samples and puts the oldest in their place. */
    void delayDry (int channel, float* samples, int count) noexcept
    {
        dryLines[static_cast<std::size_t> (channel)].exchange (samples, count);
    }

private:
    void runVoice (const BankRun&, int number, float voiceSemitones, const float* levels, int count) noexcept;

    float sampleRate = 44100.0f;
    int frameSize = 0;
    bool ready = false;
    std::array<std::unique_ptr<PitchShiftEngine>, voiceCount> engines;
    std::array<DelayLine, PitchShiftEngine::maxChannels> dryLines;
};
} // namespace tarvelline
