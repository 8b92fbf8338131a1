// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace tarvelline
{
/** How an engine's frames lie in time and frequency at one pitch ratio. Upwards a whole frame of input is resynthesised into
    a shorter span; downwards a shorter span of input is stretched over the frame. Lengths in samples. */
struct Geometry
{
    Geometry() = default;

    /** @param frameSize  N
        @param ratio      frequency out / in */
    Geometry (int frameSize, float ratio) noexcept;

    int analysisSpan = 0;  // input covered by an analysis frame
    int analysisHop = 0;   // a span over the overlap factor
    int synthesisSpan = 0; // output covered by a synthesis frame
    int synthesisHop = 0;  // a span over the overlap factor
    int overlapLength = 0; // the part of a new frame that is added onto earlier frames
    int activeBins = 0;    // bins that stay below the Nyquist frequency
};
} // namespace tarvelline
