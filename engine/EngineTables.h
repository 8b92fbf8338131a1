// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

#include <array>
#include <cstddef>

namespace tarvelline
{
/** The one-pole smoother that makes the spectral envelope out of magnitudes. Each of its steps waits for the one before, so
    the bins are cut into segments that are smoothed side by side: bin k = segment * steps + i stands at i * count + segment. */
struct EnvelopeSegments
{
    static constexpr std::size_t count = 16;

    EnvelopeSegments() = default;

    /** @param binCount  a multiple of 64 */
    EnvelopeSegments (const float* binCoefficients, std::size_t binCount);

    std::size_t steps = 0;                   // bins of a segment, a multiple of 4
    AlignedVector<float> coefficients;       // of each bin
    AlignedVector<float> upwards, downwards; // share of a segment's first, or last, state that arrives at each bin
};

/** The constant tables of one engine: they depend on the frame length and the sample rate alone.

    Shapes: N = frame length, K = N / 2 bins; windows have N + 1 entries (the last one 0, read only by a window index that
    rounding carries to N) and readAhead, per-bin tables K.
    Threads: built while audio is stopped (allocates), read-only afterwards. */
struct EngineTables
{
    EngineTables() = default;

    /** @param frameLength     N, a power of two, at least 2048
        @param frequencyScale  stretches the two band limits of the onset detector: 1 at 44.1 kHz
        @param sampleRate      Hz */
    EngineTables (int frameLength, float frequencyScale, float sampleRate);

    AlignedVector<float> wideWindow;     // a half period of a sine over the whole frame
    AlignedVector<float> narrowWindow;   // the same over the middle quarter, with the wide window's overlap-add gain
    int narrowStart = 0, narrowEnd = 0;  // the entries between which it is not 0
    AlignedVector<float> onsetThreshold; // rise of a bin's magnitude from frame to frame that counts as an onset
    AlignedVector<float> lowBandWeight;  // share of a bin that is heard through the wide window, 1 .. 0
    int lowBandEnd = 0;                  // from this bin on it is 0
    std::array<EnvelopeSegments, 4> envelopes; // of the lowest quarter of the bins, the lower half, three quarters, all
    int peakStartBin = 0;                      // first bin of the full peak test

    /** The fewest segments that make the envelope of the lowest `bins` bins where it is read at `ratio` times their frequency. */
    const EnvelopeSegments& envelopeReaching (int bins, float ratio) const noexcept;

private:
    void buildWindows (int frameLength);
    void buildOnsetThresholds (int binCount, float binsPerHz, float frequencyScale);
    void buildLowBandWeights (int binCount, float binsPerHz);
    void buildEnvelopeSegments (int binCount);
};
} // namespace tarvelline
