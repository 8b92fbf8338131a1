// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/Geometry.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr float hopShare = 1.0f / 8.0f; // hops are spans over the overlap factor of 8
constexpr int minimumSpan = 250;        // the shortest that a ratio leads to

int scaled (int length, float factor) noexcept { return static_cast<int> (static_cast<float> (length) * factor); }
} // namespace

Geometry::Geometry (int frameSize, float ratio) noexcept
{
    const auto share = ratio < 1.0f ? ratio : 1.0f / ratio; // of the frame that is used, and of its bins
    const auto span = std::max (scaled (frameSize, share), minimumSpan);

    analysisSpan = ratio < 1.0f ? span : frameSize;
    analysisHop = scaled (analysisSpan, hopShare);
    synthesisSpan = ratio < 1.0f ? frameSize : span;
    synthesisHop = scaled (synthesisSpan, hopShare);
    overlapLength = synthesisSpan - synthesisHop;
    activeBins = scaled (frameSize / 2, share);
}
} // namespace tarvelline
