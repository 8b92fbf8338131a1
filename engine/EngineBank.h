// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/DelayLine.h"
#include "engine/PitchShiftEngine.h"
#include "engine/VoiceSlot.h"

#include <array>
#include <memory>

namespace tarvelline
{
/** What one sample frame asks of the bank. */
struct FrameControls
{
    float pitchSemitones = 0.0f;
    float timbreSemitones = 0.0f;
    bool transposeMode = true; // one engine, transposed; otherwise one engine a held note
    bool timbreInUse = false;  // otherwise the envelope moves with the pitch
};

/** Eight pitch-shift engines, one a voice, and the dry path that is delayed to match them.

    Frame length N (and so the latency, in samples): 2048 up to 48 kHz, 4096 up to 96 kHz, 8192 above.
    Threads: setSampleRate(), rebuildEngines() and destroyEngines() while audio is stopped; processFrame() and the delay
            lines on the audio thread. Real time: neither of these two allocates, locks or throws.
    Errors: when memory runs out rebuildEngines() throws std::bad_alloc and the bank stays not ready. */
class EngineBank
{
public:
    /** @param hertz  the host's rate; anything that is not finite and above 0 is taken as 44100 */
    void setSampleRate (float hertz) noexcept;

    /** Builds eight fresh engines and the dry lines for the stored sample rate. */
    void rebuildEngines();

    void destroyEngines() noexcept;

    bool isReady() const noexcept { return ready; }
    float getSampleRate() const noexcept { return sampleRate; }
    int getFrameSize() const noexcept { return frameSize; }

    /** The frame length for a sample rate in Hz. */
    static int frameSizeFor (float sampleRate) noexcept;

    /** One sample a channel in, the sum of all sounding voices out. `channels` is 1 or 2; call it only when ready.
        In voice mode every active slot runs its engine and is added with its level (none while that is below zero);
        in transpose mode engine 0 alone runs, at full gain. Clears `started` of the voices it runs. */
    void processFrame (const FrameControls&, VoiceSlots&, const float* in, float* out, int channels) noexcept;

    /** The dry signal of a channel, N samples late: hands back the oldest sample and keeps `newest`. */
    float delayDry (int channel, float newest) noexcept
    {
        return dryLines[static_cast<std::size_t> (channel)].exchange (newest);
    }

private:
    void runEngine (int number, float pitchRatio, float formantRatio, float gain, const float* in, float* out,
                    int channels) noexcept;

    float sampleRate = 44100.0f;
    int frameSize = 0;
    bool ready = false;
    std::array<std::unique_ptr<PitchShiftEngine>, voiceCount> engines;
    std::array<DelayLine, PitchShiftEngine::maxChannels> dryLines;
};
} // namespace tarvelline
