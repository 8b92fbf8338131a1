// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/PixelMeters.h"
#include "tests/support/ProcessorRig.h"
#include "widgets/Keyboard.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
constexpr int keyWidth = 48, height = 132; // sixths, eighths and thirds of the one and 20/33 of the other are whole

juce::Image keyboardWith (std::initializer_list<int> notes)
{
    ProcessorRig rig;
    rig.prepare();
    rig.processor.midiTransposeMode = false; // so that notes add up

    for (const auto note : notes)
        rig.processor.noteEvent (note, true);

    Keyboard keyboard;
    keyboard.setVoices (rig.processor.voices);
    keyboard.setSize (28 * keyWidth, height);
    return pictureOf (keyboard);
}

juce::Rectangle<int> whiteKey (int index) { return { index * keyWidth, 0, 42, height }; }

/** A black key by what lies before it: white keys, and sixths of one. */
juce::Rectangle<int> blackKey (int whiteKeys, int sixths)
{
    return { whiteKeys * keyWidth + sixths * keyWidth / 6, 0, keyWidth / 2, 80 };
}

// Keys off by one, an octave that drifts, or a note beside the strip that lights its end.
TEST (Keyboard, LightsEachKeyInItsPlaceAlone)
{
    const std::pair<int, juce::Rectangle<int>> keys[] = {
        { 36, whiteKey (0) },
        { 38, whiteKey (1) },
        { 41, whiteKey (3) },
        { 59, whiteKey (13) },
        { 60, whiteKey (14) },
        { 83, whiteKey (27) },
        { 37, blackKey (0, 3) },
        { 39, blackKey (0, 11) },
        { 42, blackKey (0, 21) },
        { 44, blackKey (0, 28) },
        { 46, blackKey (0, 35) },
        { 49, blackKey (7, 3) },
        { 82, blackKey (21, 35) },
        { 35, {} },
        { 84, {} },
        { 0, {} },
        { 127, {} },
    };

    for (const auto& [note, lit] : keys)
    {
        EXPECT_EQ (boundsOf (keyboardWith ({ note }), isInk), lit) << note;
        EXPECT_EQ (boundsOf (keyboardWith ({ note }), isOrange), lit) << note;
    }

    EXPECT_TRUE (boundsOf (keyboardWith ({}), isInk).isEmpty());
}

// An F with D's notches on both sides, or a B with C's.
TEST (Keyboard, GivesEachWhiteKeyItsNotches)
{
    const auto shapeOf = [] (int note)
    {
        const auto picture = keyboardWith ({ note });
        return picture.getClippedImage (boundsOf (picture, isInk));
    };

    for (const auto& [note, other, same] : { std::tuple { 41, 36, true },
                                             { 47, 40, true },
                                             { 38, 36, false },
                                             { 40, 36, false },
                                             { 43, 38, false },
                                             { 45, 43, false } })
        EXPECT_EQ (differingPixels (shapeOf (note), shapeOf (other), 8) <= 100, same) << note;
}
} // namespace
} // namespace tarvelline::test
