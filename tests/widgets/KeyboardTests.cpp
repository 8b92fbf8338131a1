// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/MidiVoices.h"
#include "tests/support/PixelMeters.h"
#include "widgets/Keyboard.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
constexpr int keyWidth = 48, height = 132; // sixths, eighths and thirds of the one and 20/33 of the other are whole

juce::Image keyboardWith (size_t litKey)
{
    MidiVoices voices;
    voices.keyLit[litKey] = 1;
    Keyboard keyboard;
    keyboard.setVoices (voices);
    keyboard.setSize (28 * keyWidth, height);
    return pictureOf (keyboard);
}

// Keys off by one, an octave that drifts, or the C above the strip that lights its end.
TEST (Keyboard, LightsEachKeyInItsPlaceAlone)
{
    constexpr std::pair<size_t, int> whiteKeys[] = { { 0, 0 },    { 2, 48 },   { 5, 144 },
                                                     { 23, 624 }, { 24, 672 }, { 47, 1296 } }; // and where it begins
    constexpr std::pair<size_t, int> blackKeys[] = { { 1, 24 },   { 3, 88 },   { 6, 168 },  { 8, 224 },
                                                     { 10, 280 }, { 13, 360 }, { 46, 1288 } };
    const auto expectLit = [] (size_t key, juce::Rectangle<int> lit)
    {
        EXPECT_EQ (boundsOf (keyboardWith (key), isInk), lit) << key;
        EXPECT_EQ (boundsOf (keyboardWith (key), isOrange), lit) << key;
    };

    for (const auto& [key, x] : whiteKeys)
        expectLit (key, { x, 0, 42, height });

    for (const auto& [key, x] : blackKeys)
        expectLit (key, { x, 0, 24, 80 });

    expectLit (48, {});
}

// An F with D's notches on both sides, or a B with C's.
TEST (Keyboard, GivesEachWhiteKeyItsNotches)
{
    const auto shapeOf = [] (size_t key)
    {
        const auto picture = keyboardWith (key);
        return picture.getClippedImage (boundsOf (picture, isInk));
    };

    for (const auto& [key, other, same] : { std::tuple { 5u, 0u, true },
                                            { 11u, 4u, true },
                                            { 2u, 0u, false },
                                            { 4u, 0u, false },
                                            { 7u, 2u, false },
                                            { 9u, 7u, false } })
        EXPECT_EQ (differingPixels (shapeOf (key), shapeOf (other), 8) <= 100, same) << key;
}
} // namespace
} // namespace tarvelline::test
