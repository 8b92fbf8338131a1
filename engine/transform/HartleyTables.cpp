// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/transform/HartleyTables.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace tarvelline
{
namespace
{
/** exp (-2 pi i turns) */
struct Turn
{
    explicit Turn (double turns)
        : re (static_cast<float> (std::cos (2.0 * std::numbers::pi * turns))),
          im (static_cast<float> (-std::sin (2.0 * std::numbers::pi * turns)))
    {
    }

    float re, im;
};

/** Six rows: the three powers of the turn of every element t of a pass. */
AlignedVector<float> turnsByElement (std::size_t half, std::size_t stride)
{
    const auto count = half / 4;
    AlignedVector<float> rows (6 * count);

    for (std::size_t t = 0; t < count; ++t)
    {
        const auto row = t / stride;
        const auto turns = static_cast<double> (row * stride) / static_cast<double> (half);

        for (std::size_t power = 1; power <= 3; ++power)
        {
            const Turn turn (static_cast<double> (power) * turns);
            rows[(2 * power - 2) * count + t] = turn.re;
            rows[(2 * power - 1) * count + t] = turn.im;
        }
    }

    return rows;
}

void appendTurns (AlignedVector<float>& table, std::size_t half, std::size_t stride, std::size_t radix)
{
    for (std::size_t p = 0; p < half / radix; p += stride)
    {
        for (std::size_t power = 1; power < radix; ++power)
        {
            const Turn turn (static_cast<double> (power * p) / static_cast<double> (half));
            table.push_back (turn.re);
            table.push_back (turn.im);
        }
    }
}
/** Two rows for each of the few bins: what turns it on by every phase. */
AlignedVector<float> turnsOfPhases (std::size_t length)
{
    const auto phases = length / (2 * HartleyTables::fewBins);
    AlignedVector<float> rows (2 * HartleyTables::fewBins * phases);

    for (std::size_t k = 0; k < HartleyTables::fewBins; ++k)
    {
        for (std::size_t p = 0; p < phases; ++p)
        {
            const Turn turn (static_cast<double> (k * p) / static_cast<double> (length));
            rows[2 * k * phases + p] = turn.re;
            rows[(2 * k + 1) * phases + p] = -turn.im;
        }
    }

    return rows;
}
} // namespace

HartleyTables::HartleyTables (int transformLength) : length (transformLength)
{
    const auto half = static_cast<std::size_t> (length) / 2;
    first = turnsByElement (half, 1);
    second = turnsByElement (half, 4);
    std::size_t stride = 16;

    for (; half / stride > 8; stride *= 4)
        appendTurns (middle, half, stride, 4);

    if (half / stride == 8)
        appendTurns (middle, half, stride, 2);

    split.resize (half);

    for (std::size_t k = 0; k < half / 2; ++k)
    {
        const auto angle = std::numbers::pi * static_cast<double> (k) / static_cast<double> (half);
        split[k] = static_cast<float> (0.5 * (std::cos (angle) + std::sin (angle)));
        split[half / 2 + k] = static_cast<float> (0.5 * (std::cos (angle) - std::sin (angle)));
    }

    phases = turnsOfPhases (static_cast<std::size_t> (length));

    for (std::size_t k = 0; k <= fewBins / 2; ++k)
    {
        const Turn turn (static_cast<double> (k) / static_cast<double> (2 * fewBins));
        blockSplit.insert (blockSplit.end(), { turn.im, turn.re });
    }

    for (const auto blockStride : { phasesAtOnce, 4 * phasesAtOnce })
        appendTurns (block, fewBins * phasesAtOnce, blockStride, 4);
}
} // namespace tarvelline
