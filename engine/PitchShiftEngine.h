// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"
#include "engine/AnalysisKernels.h"
#include "engine/EngineResources.h"
#include "engine/Geometry.h"
#include "engine/RealTime.h"
#include "engine/SpanWindows.h"
#include "engine/SynthesisKernels.h"

#include <array>
#include <memory>

namespace tarvelline
{
/** A run of samples through one engine: one value a sample in every array. */
struct EngineRun
{
    const float *pitchRatios, *formantRatios; // as setRatios() takes them
    const float* const* in;                   // a pointer a channel, as is out; the two do not overlap
    float* const* out;
    int channels; // 1 or 2
    int count;
};

/** Shifts the pitch of one or two channels by any ratio, and their spectral envelope by another.

    A phase vocoder with eightfold overlap, driven by runs of samples: every hop (N / 8 samples at ratio 1) a frame is
    analysed, its bins' phases are carried on, and the frame is overlap-added, resampled by the pitch ratio. Upwards the
    resynthesised frame is read back compressed; downwards the analysis reads its oldest N * ratio samples stretched over
    the frame. Below about 650 Hz the whole frame is heard, above it only the middle quarter, which keeps transients sharp.

    Shapes: N = frameSize (2048, 4096 or 8192), K = N / 2 bins; bin k of a spectrum is the pair (x[k], x[K + k]),
            (1 + i) times its Fourier coefficient.
    Units: ratios are frequency out / frequency in (2 = an octave up); samples nominally -1 .. 1.
    Latency: N samples, whatever the ratio. Gain: about 1.04 on a steady signal at ratio 1.
    Threads: prepare() and reset() while audio is stopped; setRatios() and process() on the audio thread.
    Real time: processing never allocates, locks or throws. A sample costs O(channels), and once a hop there are one
            forward or two inverse transforms a channel; all memory comes from prepare(). What is not heard at once may
            wait for up to a hop, so that engines whose frames fall on the same sample take turns.
    Errors: none reported. Ratios are clamped; processing unprepared is a caller's fault (asserted). A sample
            that is subnormal, not finite or beyond +-1e4 counts as 0.

    Sources: Flanagan and Golden, "Phase vocoder", Bell Syst. Tech. J. 45(9), 1966: magnitude and phase advance a bin.
            Laroche and Dolson, "Improved phase vocoder time-scale modification of audio", IEEE Trans. Speech Audio
            Process. 7(3), 1999: a peak and its flanks are one event; here they share a phase reset, not a locked phase.
            Roebel, "A new approach to transient processing in the phase vocoder", DAFx-03, 2003: phases start afresh at
            onsets, bin by bin; here a rise in magnitude marks the onset, not the paper's centre of gravity. */
class PitchShiftEngine
{
public:
    static constexpr int maxChannels = 2;

    /** Sizes every buffer and builds the tables; ends ready, at ratio 1, silent. Allocates.
        @param frameLength     N: 2048, 4096 or 8192
        @param frequencyScale  see EngineTables
        @param sampleRate      Hz */
    void prepare (int frameLength, float frequencyScale, float sampleRate);

    /** The same with what it shares with other engines of that frame length and rate.
        @param waitingShare  0 .. 1: how long work waits, of the time that it may; it makes no difference to the sound */
    void prepare (std::shared_ptr<EngineResources> shared, float waitingShare = 0.0f);

    /** Clears all signal state, keeps ratios and memory. */
    void reset() noexcept;

    /** Asks for a pitch ratio (held to 1e-10 .. 96) and an envelope ratio (1 = envelope untouched; below 0 becomes 0.001).
        A NaN counts as below. The pitch ratio takes effect inside the next frame, its geometry at the next frame boundary. */
    void setRatios (float pitchRatio, float newFormantRatio) noexcept;

    /** A run of samples in, as many out, N samples later. Where a run is cut makes no difference to the bit. */
    void process (const EngineRun&) noexcept TARVELLINE_REAL_TIME;

private:
    struct Channel
    {
        AlignedVector<float> inRing;    // 2 ringLength: every sample twice, so that a frame is one run; and readAhead
        AlignedVector<float> outRing;   // N
        AlignedVector<float> magnitude; // K: of the last analysis frame
        AlignedVector<float> shapedMagnitude;                  // K: with the envelope warped
        AlignedVector<float> advance, lastPhasor, synthPhasor; // N: unit phasors, pair layout
    };

    /** Work that has fallen due, and waits. */
    struct Postponed
    {
        bool waits = false;
        int samples = 0; // for so many more, and to the end of the run that they are in
    };

    /** A frame to be analysed. */
    struct PostponedAnalysis : Postponed
    {
        int start = 0; // in inRing and ratioHistory
        float formantRatio = 1.0f;
    };

    /** What is left to do of a synthesis frame once its low band sounds: the high one is heard from its middle on. */
    struct PostponedHighBand : Postponed
    {
        std::array<kernels::SynthesisBins, maxChannels> bins {};
        kernels::OverlapAdd overlapAdd {};
        bool isCompressed = false;
    };

    // Samples in and out (PitchShiftEngine.cpp)
    int samplesToBoundary() const noexcept;
    void recordRatios (const float* ratios, int count) noexcept;
    void writeInput (Channel&, const float* samples, int count) noexcept;
    void readOutput (const Channel&, float* samples, int count) const noexcept;
    void advance (int samples) noexcept;
    int waitOf (int longest) const noexcept;
    void postponeAnalysis() noexcept;
    void finishAnalysis() noexcept;
    void finishPostponed() noexcept;
    void updateRatio() noexcept;
    void clearOutput (int firstOffset, int endOffset) noexcept;

    // Analysis frame (PitchShiftAnalysis.cpp)
    void analyseFrame() noexcept;
    void transformWindowedInput() noexcept;
    void readStretchedInput() noexcept;
    void warpEnvelope() noexcept;
    kernels::AnalysisBins analysisBins() noexcept;

    // Synthesis frame (PitchShiftSynthesis.cpp)
    void synthesiseLowBand() noexcept;
    void postponeHighBand() noexcept;
    void finishHighBand() noexcept;
    bool isCompressed() const noexcept;
    kernels::SynthesisBins synthesisBins (std::size_t channel) noexcept;
    kernels::OverlapAdd overlapAdd (const std::array<AlignedVector<float>, 2>& frames) noexcept;

    int frameSize = 0; // N
    int binCount = 0;  // K

    Geometry geometry;
    float requestedRatio = 1.0f, appliedRatio = 1.0f; // the geometry is that of the applied one
    float formantRatio = 1.0f, appliedFormantRatio = 1.0f;

    int ringLength = 0;                // of inRing and ratioHistory: N, and a hop for which a frame may wait
    int position = 0, outPosition = 0; // in these, and in outRing: the oldest sample, and the next
    int analysisCounter = 0, synthesisCounter = 0; // samples since the last frame
    int channelCount = maxChannels;

    float waitingShare = 0.0f;
    PostponedAnalysis postponedAnalysis;
    PostponedHighBand postponedHighBand;

    AlignedVector<float> ratioHistory; // 2 ringLength, as inRing: the ratio asked for at every input position
    int unityRun = 0;                  // samples, at most N, for which that ratio has been exactly 1
    AlignedVector<float> lockCount;    // K: frames for which a bin has stayed stable; 0 = phase reset
    AlignedVector<float> magnitudeSum; // K: over channels, in the last analysis frame
    int analysedBins = 0;              // active ones in the last analysis frame
    int shapedBins = 0;                // the lowest ones, whose envelope is warped
    SpanWindows windows;

    std::shared_ptr<EngineResources> resources; // none while unprepared
    std::array<Channel, maxChannels> channelState;
};
} // namespace tarvelline
