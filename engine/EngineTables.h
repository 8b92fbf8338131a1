// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"

namespace tarvelline
{
/** The constant tables of one engine: they depend on the frame length and the sample rate alone.

    Shapes: N = frame length, K = N / 2 bins; windows have N + 1 entries (the last one 0, read only by a window index that
    rounding carries to N), per-bin tables K.
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
    AlignedVector<float> envelopeCoeff;  // one-pole smoothing of the spectral envelope along the bins
    int peakStartBin = 0;                // first bin of the full peak test

private:
    void buildWindows (int frameLength);
    void buildOnsetThresholds (int binCount, float binsPerHz, float frequencyScale);
    void buildLowBandWeights (int binCount, float binsPerHz);
    void buildEnvelopeCoefficients (int binCount);
};
} // namespace tarvelline
