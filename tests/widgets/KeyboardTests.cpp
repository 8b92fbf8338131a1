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

struct KeyboardRig
{
    KeyboardRig()
    {
        rig.prepare();
        rig.processor.midiTransposeMode = false; // so that notes add up
        keyboard.setVoices (rig.processor.voices);
        keyboard.setSize (28 * keyWidth, height);
    }

    juce::Image pictureWith (std::initializer_list<int> notes)
    {
        for (const auto note : notes)
            rig.processor.noteEvent (note, true);

        return pictureOf (keyboard);
    }

    ProcessorRig rig;
    Keyboard keyboard;
};

juce::Rectangle<int> whiteKey (int index) { return { index * keyWidth, 0, 42, height }; }

/** A black key by what lies before it: white keys, and sixths of one. */
juce::Rectangle<int> blackKey (int whiteKeys, int sixths)
{
    return { whiteKeys * keyWidth + sixths * keyWidth / 6, 0, keyWidth / 2, 80 };
}

struct KeyCase
{
    int note;
    juce::Rectangle<int> lit;
};

class LitKey : public testing::TestWithParam<KeyCase>
{
};

// Keys off by one, an octave that drifts, or a note beside the strip that lights its end.
TEST_P (LitKey, IsDrawnInItsPlaceAlone)
{
    KeyboardRig rig;
    const auto picture = rig.pictureWith ({ GetParam().note });
    EXPECT_EQ (boundsOf (picture, isInk), GetParam().lit);
    EXPECT_EQ (boundsOf (picture, isOrange), GetParam().lit);

    rig.rig.processor.noteEvent (GetParam().note, false);

    for (auto i = 0; i < 100; ++i)
        rig.rig.playBlock (512); // let it fade out

    EXPECT_TRUE (boundsOf (pictureOf (rig.keyboard), isInk).isEmpty());
}

INSTANTIATE_TEST_SUITE_P (Table, LitKey,
                          testing::Values (KeyCase { 36, whiteKey (0) }, KeyCase { 38, whiteKey (1) },
                                           KeyCase { 41, whiteKey (3) }, KeyCase { 59, whiteKey (13) },
                                           KeyCase { 60, whiteKey (14) }, KeyCase { 83, whiteKey (27) },
                                           KeyCase { 37, blackKey (0, 3) }, KeyCase { 39, blackKey (0, 11) },
                                           KeyCase { 42, blackKey (0, 21) }, KeyCase { 44, blackKey (0, 28) },
                                           KeyCase { 46, blackKey (0, 35) }, KeyCase { 49, blackKey (7, 3) },
                                           KeyCase { 82, blackKey (21, 35) }, KeyCase { 35, {} }, KeyCase { 84, {} },
                                           KeyCase { 0, {} }, KeyCase { 127, {} }));

struct ShapeCase
{
    int note, noteOfShape; // the shape is that of the other note ...
    bool same;             // ... or not
};

class KeyShape : public testing::TestWithParam<ShapeCase>
{
};

// An F with D's notches on both sides, or a B with C's.
TEST_P (KeyShape, HasItsOwnNotches)
{
    const auto shapeOf = [] (int note)
    {
        KeyboardRig rig;
        const auto picture = rig.pictureWith ({ note });
        return picture.getClippedImage (boundsOf (picture, isInk));
    };

    const auto differing = differingPixels (shapeOf (GetParam().note), shapeOf (GetParam().noteOfShape), 8);

    if (GetParam().same)
        EXPECT_EQ (differing, 0);
    else
        EXPECT_GT (differing, 100);
}

INSTANTIATE_TEST_SUITE_P (Table, KeyShape,
                          testing::Values (ShapeCase { 41, 36, true }, ShapeCase { 47, 40, true },
                                           ShapeCase { 48, 36, true }, ShapeCase { 38, 36, false },
                                           ShapeCase { 40, 36, false }, ShapeCase { 43, 38, false },
                                           ShapeCase { 45, 43, false }));

TEST (Keyboard, LightsAChord)
{
    KeyboardRig rig;
    const auto picture = rig.pictureWith ({ 48, 52, 55, 58 });

    for (const auto x : { 7, 9, 11 })
        EXPECT_TRUE (isOrange (picture.getPixelAt (x * keyWidth + 20, height - 10))) << x;

    EXPECT_TRUE (isOrange (picture.getPixelAt (blackKey (7, 35).getCentreX(), 40)));
    EXPECT_FALSE (isInk (picture.getPixelAt (8 * keyWidth + 20, height - 10)));
}
} // namespace
} // namespace tarvelline::test
