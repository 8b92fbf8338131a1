// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/Palette.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace tarvelline::render
{
namespace
{
constexpr double darkest = 6.0, lightest = 96.0;    // L*
constexpr double darkHue = 290.0, lightHue = 200.0; // degrees: violet blue to blue green
constexpr double mostChroma = 32.0;                 // all colours stay within sRGB

double fromLab (double f)
{
    constexpr double knee = 6.0 / 29.0;
    return f > knee ? f * f * f : 3.0 * knee * knee * (f - 4.0 / 29.0);
}

juce::uint8 encode (double linear)
{
    const auto value = std::clamp (linear, 0.0, 1.0);
    const auto encoded = value <= 0.0031308 ? 12.92 * value : 1.055 * std::pow (value, 1.0 / 2.4) - 0.055;
    return static_cast<juce::uint8> (std::lround (255.0 * encoded));
}

juce::Colour fromLightnessChromaHue (double lightness, double chroma, double hue)
{
    const auto angle = hue * std::numbers::pi / 180.0;
    const auto middle = (lightness + 16.0) / 116.0;

    // White point D65, then the sRGB primaries.
    const auto x = 0.95047 * fromLab (middle + chroma * std::cos (angle) / 500.0);
    const auto y = fromLab (middle);
    const auto z = 1.08883 * fromLab (middle - chroma * std::sin (angle) / 200.0);
    return { encode (3.2406 * x - 1.5372 * y - 0.4986 * z), encode (-0.9689 * x + 1.8758 * y + 0.0415 * z),
             encode (0.0557 * x - 0.2040 * y + 1.0570 * z) };
}

std::array<juce::Colour, 256> makeTable()
{
    std::array<juce::Colour, 256> table;

    for (std::size_t i = 0; i < table.size(); ++i)
    {
        const auto along = static_cast<double> (i) / static_cast<double> (table.size() - 1);
        table[i] = fromLightnessChromaHue (darkest + along * (lightest - darkest),
                                           mostChroma * std::sin (std::numbers::pi * along),
                                           darkHue + along * (lightHue - darkHue));
    }

    return table;
}
} // namespace

juce::Colour paletteColour (float proportion)
{
    static const auto table = makeTable();
    const auto last = static_cast<float> (table.size() - 1);
    return table[static_cast<std::size_t> (std::lround (last * std::clamp (proportion, 0.0f, 1.0f)))];
}
} // namespace tarvelline::render
