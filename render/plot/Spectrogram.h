// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "render/plot/Source.h"

#include <vector>

namespace tarvelline::render
{
/** The grid that a spectrogram fills: `columns` moments of equal distance and `rows` frequencies of equal ratio. */
struct SpectrogramGrid
{
    double seconds = 0.0; // from the start of the recording to the right edge
    double lowHz = 0.0, highHz = 0.0;
    int columns = 0, rows = 0;
};

/** Levels on a grid in dB, -140 to 140, 0 for a sine of full scale; the mean power of all channels. */
class Spectrogram
{
public:
    /** Analyses a recording; what the grid has beyond its end is silence. */
    Spectrogram (const Source&, const SpectrogramGrid&);

    /** @param row  0 is the lowest frequency */
    float levelAt (int column, int row) const { return levels[static_cast<std::size_t> (column * grid.rows + row)]; }

    float loudest() const;

    const SpectrogramGrid grid;

private:
    std::vector<float> levels;
};
} // namespace tarvelline::render
