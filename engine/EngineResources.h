// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/AlignedVector.h"
#include "engine/EngineTables.h"
#include "engine/PeakResets.h"
#include "engine/transform/HartleyTransform.h"

#include <array>
#include <cstddef>

namespace tarvelline
{
/** What all engines of one frame length and sample rate share: the constants, and the frames that one engine at a time works
    on, none of which outlives a call. Eight voices that share them keep them in the cache.

    Threads: the engines that share this run on one thread. */
struct EngineResources
{
    /** The parameters are those of EngineTables. Allocates. */
    EngineResources (int frameLength, float frequencyScale, float sampleRate)
        : tables (frameLength, frequencyScale, sampleRate), transform (frameLength),
          masks (static_cast<std::size_t> (frameLength) / 2)
    {
        const auto length = static_cast<std::size_t> (frameLength);

        for (auto* band : { &low, &high })
            for (auto& frame : *band)
                frame.resize (length + 1 + readAhead);

        for (auto& row : envelopeRows)
            row.resize (length / 2);

        for (auto& envelope : envelopes)
            envelope.resize (length / 2 + 1 + readAhead);
    }

    const EngineTables tables;
    const HartleyTransform transform;

    // A frame a channel: N values, one more to interpolate into (always 0) and readAhead. The low one serves the analysis too.
    std::array<AlignedVector<float>, 2> low, high;

    BinMasks masks;
    // While the envelope is moved, a channel each: K values in the order of EnvelopeSegments; K in their own, one more and
    // readAhead.
    std::array<AlignedVector<float>, 2> envelopeRows, envelopes;
};
} // namespace tarvelline
