// SPDX-License-Identifier: GPL-3.0-or-later
// What the whole window shows and where it answers, in both sizes and on screens of both kinds, measured in its picture. The
// places are written down here, in units of a window of 1024 x 576.
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"
#include "tests/support/PixelMeters.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using Place = juce::Point<float>;
using Area = juce::Rectangle<float>;

/** Something at a place of its own. */
struct Thing
{
    const char* id; // of what the mouse reaches there; nullptr: nothing
    Area area;
    double outline = 0.0; // the artwork around it is darker than this; 0: none stands around it

    // The mark that turns about its middle, if there is one:
    const char* parameter = nullptr; // that turns it
    float radius = 0.0f;             // of the circle on which its own middle goes
    float surface = 0.0f;
    double contrast = 0.0; // with what it covers, at least
};

const Thing things[] = {
    { "pitchRangeBox", { 24.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "timbreRangeBox", { 536.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "pitchSnapButton", { 416.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "timbreSnapButton", { 928.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "midiModeButton", { 12.0f, 515.0f, 63.0f, 48.0f }, 0.009 },
    { "sizeButton", { 472.0f, 331.0f, 39.0f, 96.0f } },
    { nullptr, { 89.0f, 526.0f, 335.0f, 36.0f }, 0.009 }, // the piano
    { "mainWheelSlider", { 92.0f, 66.0f, 330.0f, 330.0f }, 0.0, mainWheelPar, 146.4f, 72.0f, 3.5 },
    { "timbreWheelSlider", { 604.0f, 66.0f, 330.0f, 330.0f }, 0.0, timbWheelPar, 146.4f, 72.0f, 3.5 },
    { nullptr, { 174.0f, 148.0f, 165.0f, 165.0f }, 0.0025, "pitch", 93.9f, 78.0f, 2.8 }, // the dials: black discs
    { nullptr, { 686.0f, 148.0f, 165.0f, 165.0f }, 0.0025, "timbre", 93.9f, 78.0f, 2.8 },
    { "pitchGravitySlider", { 85.0f, 422.0f, 77.0f, 77.0f }, 0.03, mainGravityPar, 25.0f, 71.0f, 7.0 },
    { "timbreGravitySlider", { 597.0f, 422.0f, 77.0f, 77.0f }, 0.03, timbGravityPar, 25.0f, 71.0f, 7.0 },
    { "pitchInertiaSlider", { 217.0f, 422.0f, 77.0f, 77.0f }, 0.03, mainInertiaPar, 25.0f, 71.0f, 7.0 },
    { "timbreInertiaSlider", { 729.0f, 422.0f, 77.0f, 77.0f }, 0.03, timbInertiaPar, 25.0f, 71.0f, 7.0 },
    { "pitchSmoothSlider", { 351.0f, 422.0f, 77.0f, 77.0f }, 0.03, mainSmoothPar, 25.0f, 71.0f, 7.0 },
    { "timbreSmoothSlider", { 863.0f, 422.0f, 77.0f, 77.0f }, 0.03, timbSmoothPar, 25.0f, 71.0f, 7.0 },
    { "mixerSlider", { 447.0f, 504.0f, 47.0f, 47.0f }, 0.03, mixerPar, 15.3f, 26.0f, 5.5 },
};

struct View
{
    int height;
    bool full;
    float scale; // pixels of the screen a pixel of the host's
};

class Window : public testing::TestWithParam<View>
{
protected:
    /** What the window's size shows of them. */
    std::vector<Thing> shown() const
    {
        std::vector<Thing> result;
        std::copy_if (std::begin (things), std::end (things), std::back_inserter (result),
                      [] (const Thing& thing) { return GetParam().full || thing.area.getX() < 512.0f; });
        return result;
    }

    juce::Image picture()
    {
        rig.tick (25); // until no read-out shows
        return pictureOf (*rig.editor, GetParam().scale);
    }

    /** The middles of the pixels whose colours, in two pictures, pass. */
    template <typename Passes>
    std::vector<Place> find (Area area, const juce::Image& now, const juce::Image& before, Passes&& passes) const
    {
        std::vector<Place> found;
        const auto pixels = (area * unit).toNearestInt();

        for (auto y = pixels.getY(); y < pixels.getBottom(); ++y)
            for (auto x = pixels.getX(); x < pixels.getRight(); ++x)
                if (passes (now.getPixelAt (x, y), before.getPixelAt (x, y)))
                    found.push_back ((juce::Point (x, y).toFloat() + Place (0.5f, 0.5f)) / unit);

        return found;
    }

    /** The smallest area around those that differ, or that pass. */
    template <typename Passes = std::not_equal_to<>>
    Area boundsIn (Area area, const juce::Image& now, const juce::Image& before, Passes&& passes = {}) const
    {
        const auto found = find (area, now, before, passes);
        return found.empty() ? Area()
                             : Area::findAreaContainingPoints (found.data(), static_cast<int> (found.size()))
                                   .expanded (0.5f / unit);
    }

    void expectEqual (Area found, Area expected, const char* what) const
    {
        for (const auto corner : { &Area::getTopLeft, &Area::getBottomRight })
            EXPECT_LE ((found.*corner)().getDistanceFrom ((expected.*corner)()), slack) << what << found.toString();
    }

    EditorRig rig { GetParam().height, GetParam().full };
    const juce::Image panel = EditorRig (GetParam().height, GetParam().full).panel (GetParam().scale);
    const float hostPixel = 576.0f / static_cast<float> (GetParam().height); // in units; controls lie on whole ones
    const float unit = GetParam().scale / hostPixel;                         // in pixels of the screen
    const float slack = GetParam().height == 576 ? 1.2f : 2.2f * hostPixel;
};

INSTANTIATE_TEST_SUITE_P (Views, Window,
                          testing::Values (View { 576, true, 1.0f }, View { 576, true, 2.0f },
                                           View { 576, false, 1.0f }, View { 400, false, 2.0f },
                                           View { 288, true, 1.0f }, View { 258, false, 2.0f }));

// A pointer off its knob, on another's parameter or as pale as its ground; a dial that follows the other wheel; a puck that
// stands upright on its way round, or does not grow with its wheel.
TEST_P (Window, TurnsEachMarkAboutItsPlace)
{
    for (const auto& [dial, wheel] :
         { std::pair { "pitchDial", "mainWheelSlider" }, { "timbreDial", "timbreWheelSlider" } })
        EXPECT_LT (
            rig.editor->getIndexOfChildComponent (&rig.control (dial)), // the puck's tip meets its rim at some sizes
            rig.editor->getIndexOfChildComponent (&rig.control (wheel)));

    const auto all = shown();
    const auto share = [] (size_t mark, int step)
    { return std::fmod (0.37f * static_cast<float> (mark) + 0.29f * static_cast<float> (step), 1.0f); };
    juce::Image before;

    for (auto step = 0; step < 5; ++step)
    {
        for (size_t i = 0; i < all.size(); ++i)
            if (all[i].parameter != nullptr && all[i].id != nullptr)
                rig.set (all[i].parameter, share (i, step));
            else if (all[i].parameter != nullptr)
                rig.followTo (all[i].parameter, share (i, step));

        const auto now = picture();

        for (size_t i = 0; i < all.size() && step > 0; ++i)
        {
            const auto& thing = all[i];

            if (thing.parameter == nullptr)
                continue;

            SCOPED_TRACE (testing::Message() << thing.parameter << ", " << step);
            const auto angle = (1.2f + 1.6f * share (i, step)) * juce::MathConstants<float>::pi;
            const auto place = thing.area.getCentre().getPointOnCircumference (thing.radius, angle);
            const auto ink =
                find (Area (32.0f, 32.0f).withCentre (place), now, before,
                      [&] (juce::Colour is, juce::Colour was)
                      { return is != was && (thing.radius > 50.0f ? isOrange (is) : luminance (is) > 0.4); });
            ASSERT_FALSE (ink.empty());

            const auto middle = std::accumulate (ink.begin(), ink.end(), Place()) / static_cast<float> (ink.size());
            EXPECT_LE (middle.getDistanceFrom (place), slack);
            EXPECT_NEAR (static_cast<float> (ink.size()) / (unit * unit * thing.surface), 1.0f, 0.04f + 0.14f / unit);

            const auto pixel = (middle * unit).toInt();
            EXPECT_GE (contrastRatio (now.getPixelAt (pixel.x, pixel.y), before.getPixelAt (pixel.x, pixel.y)),
                       thing.contrast);
        }

        before = now;
    }
}

// A control moved without its artwork, artwork without its control, text beside its frame; a button that flashes under the
// mouse, or does not answer a press.
TEST_P (Window, AnswersWhereItsArtworkStands)
{
    const auto plain = picture();
    const auto edge = GetParam().height == 576 ? 0.4f : 1.6f * hostPixel;
    const auto reached = [&] (Area area, Place share)
    {
        const auto at = area.getRelativePoint (share.x, share.y) / hostPixel;
        const auto* found =
            rig.editor->getComponentAt (juce::roundToInt (std::floor (at.x)), juce::roundToInt (std::floor (at.y)));

        while (found != nullptr && found->getComponentID().isEmpty())
            found = found->getParentComponent();

        return found != nullptr ? found->getComponentID() : juce::String();
    };

    for (const auto& thing : shown())
    {
        if (thing.id == nullptr)
            continue;

        for (const auto share : { Place (0.5f, 0.0f), { 0.5f, 1.0f }, { 0.0f, 0.5f }, { 1.0f, 0.5f } })
        {
            EXPECT_EQ (reached (thing.area.reduced (edge), share), thing.id) << share.toString();
            EXPECT_NE (reached (thing.area.expanded (edge), share), thing.id) << share.toString();
        }

        if (auto* button = dynamic_cast<juce::Button*> (&rig.control (thing.id)))
        {
            button->setState (juce::Button::buttonOver);
            EXPECT_TRUE (boundsIn (thing.area, picture(), plain).isEmpty()) << thing.id;
            button->setState (juce::Button::buttonDown);
            expectEqual (boundsIn (thing.area.expanded (8.0f), picture(), plain), thing.area, thing.id);
            button->setState (juce::Button::buttonNormal);
        }

        if (thing.parameter == nullptr && thing.outline > 0.0)
        {
            const auto text = boundsIn (thing.area, plain, plain, [] (auto is, auto) { return luminance (is) > 0.6; });
            EXPECT_NEAR (text.getCentreX(), thing.area.getCentreX(), 3.2f) << thing.id;
            EXPECT_NEAR (text.getCentreY(), thing.area.getCentreY(), 3.2f) << thing.id;
        }
    }

    if (unit < 1.0f) // where a line is finer than a pixel it is no longer as dark
        return;

    for (const auto& thing : shown())
    {
        const auto outline = thing.outline;
        const auto isKnob = outline > 0.02; // below the arch over it other lines are dark
        const auto searched =
            thing.area.expanded (3.0f).withTrimmedBottom (isKnob ? thing.area.getHeight() / 2.0f : 0.0f);
        const auto dark = boundsIn (searched, panel, panel, [=] (auto is, auto) { return luminance (is) < outline; });

        if (outline > 0.0)
        {
            const auto whole = isKnob ? dark.withHeight (dark.getWidth()) : dark;
            EXPECT_LE (whole.getCentre().getDistanceFrom (thing.area.getCentre()), 1.8f) << thing.area.toString();
            EXPECT_NEAR (dark.getWidth(), thing.area.getWidth(), 5.0f) << thing.area.toString();
        }
    }
}

// A scale beside its wheel or of the other's range, the last tick lost to rounding, a long tick off its step; "+0", "-12.0",
// numbers off their ticks, or every number on a crowded scale. A plus sign is not to push the digits aside.
TEST_P (Window, HasItsScalesAroundTheWheels)
{
    constexpr auto pi = juce::MathConstants<float>::pi;
    const auto isTick = [] (juce::Colour colour) { return luminance (colour) < 0.09; };

    for (auto range = 0; range < 6; ++range)
        for (const auto& [side, index, centre] :
             { std::tuple { "pitch", range, Place (257.0f, 231.0f) }, { "timbre", 5 - range, Place (769.0f, 231.0f) } })
        {
            if (centre.x > 512.0f && ! GetParam().full)
                continue;

            rig.choose (juce::String (side) + "RangeBox", index);
            const auto steps = static_cast<size_t> (std::array { 2, 4, 6, 12, 24, 48 }[static_cast<size_t> (index)]);
            const auto now = picture();
            const auto ticksAt = [&] (float radius) { return litRuns (now, centre * unit, radius * unit, isTick); };
            EXPECT_EQ (ticksAt (167.7f).size(), 0u);

            if (unit > 0.6f && unit * 24.0f > static_cast<float> (steps)) // else ticks are finer than pixels
            {
                const auto ticks = ticksAt (182.0f);
                EXPECT_EQ (ticksAt (172.0f).size(), steps + 1);
                ASSERT_EQ (ticks.size(), 5 * steps + 1);

                for (size_t i = 0; i < ticks.size(); ++i)
                    EXPECT_NEAR (ticks[i],
                                 (1.2f + 1.6f * static_cast<float> (i) / static_cast<float> (ticks.size() - 1)) * pi,
                                 0.004f * hostPixel);
            }

            for (const auto& ink : { juce::Colour (0xff203040), juce::Colour (0xfffaebd7) }) // of ticks and numbers
            {
                const auto area = Area (430.0f, 430.0f).withCentre (centre);
                const auto isPale = [=] (auto is, auto was) { return is == ink && contrastRatio (is, was) < 3.0; };
                EXPECT_TRUE (find (area, now, panel, isPale).empty()) << ink.toString() << ' ' << range;
                EXPECT_TRUE (unit < 1.0f
                             || ! find (area, now, panel, [=] (auto is, auto) { return is == ink; }).empty());
            }

            auto& scale = rig.control (juce::String (side) + "ScaleSlider");
            const auto size = static_cast<float> (scale.getWidth());
            auto number = -static_cast<int> (steps) / 2;

            for (const auto& text : textsOf (scale))
            {
                const auto tick = Place (size / 2.0f, size / 2.0f)
                                      .getPointOnCircumference (0.46f * size, 1.6f * pi * static_cast<float> (number)
                                                                                  / static_cast<float> (steps));
                EXPECT_EQ (text.text, (number > 0 ? "+" : "") + juce::String (number));
                EXPECT_NEAR ((text.left + text.right) / 2.0f, tick.x - (number > 0 ? 0.01f * size : 0.0f), 1.0f)
                    << number;
                EXPECT_NEAR (text.baseline, tick.y + 0.35f * text.height, 0.12f * text.height) << number;
                EXPECT_NEAR (text.height, 0.0425f * size, 0.01f);
                number += steps > 24 ? 2 : 1;
            }

            EXPECT_EQ (number, static_cast<int> (steps) / 2 + (steps > 24 ? 2 : 1));
        }
}

// A number or a line off the middle of its dial, keys beside the piano.
TEST_P (Window, WritesIntoTheDialsAndLightsThePiano)
{
    const auto plain = picture();
    rig.tickDials (501);
    rig.processor.voices.keyLit[0] = rig.processor.voices.keyLit[47] = 1;
    const auto now = picture();

    for (const auto& [id, area, outline, parameter, radius, surface, contrast] : shown())
        if (id == nullptr && parameter == nullptr)
        {
            expectEqual (boundsIn (area.expanded (20.0f), now, plain), area, "both ends of the piano");
        }
        else if (id == nullptr)
        {
            const auto number = boundsIn (area.reduced (20.0f, 60.0f), plain, plain,
                                          [] (auto is, auto) { return luminance (is) > 0.06; });
            expectEqual (number, Area (66.5f, 24.0f).withCentre (area.getCentre() + Place (0.2f, 0.4f)), parameter);
            expectEqual (boundsIn (area, now, plain),
                         Area (80.5f, 9.5f).withCentre (area.getCentre() + Place (0.25f, 20.75f)), parameter);
        }
}

// Lettering that drowns in the panel, smeared over two pixels by its place or too thin for its size; labels of one row on
// different baselines. Its strokes' cores are the darkest quarter of the area that its ink spans.
TEST_P (Window, LettersThePanelLegiblyOnEvenBaselines)
{
    std::vector<std::pair<Area, float>> labels {
        { { 14.0f, 498.0f, 60.0f, 16.0f }, 512.0f },
        { { 444.0f, 554.0f, 52.0f, 16.0f }, 566.0f },
        { { 202.0f, 366.0f, 108.0f, 18.0f }, 382.0f },
        { { 660.0f, 548.0f, 216.0f, 18.0f }, 562.0f },
    };

    for (const auto left : { 0.0f, 512.0f })
        for (const auto& [x, y, width, baseline] : { std::array { 220.0f, 6.0f, 74.0f, 20.0f },
                                                     { 14.0f, 74.0f, 78.0f, 88.0f },
                                                     { 422.0f, 74.0f, 62.0f, 88.0f },
                                                     { 84.0f, 500.0f, 78.0f, 512.0f },
                                                     { 216.0f, 500.0f, 78.0f, 512.0f },
                                                     { 350.0f, 500.0f, 78.0f, 512.0f } })
            labels.push_back ({ { left + x, y, width, 16.0f }, baseline });

    for (const auto& [area, baseline] : labels)
    {
        std::vector<double> lights;
        const auto collect = [&] (auto is, auto)
        {
            lights.push_back (luminance (is));
            return false;
        };

        if (area.getX() > 512.0f && ! GetParam().full)
            continue;

        find (area, panel, panel, collect);
        std::sort (lights.begin(), lights.end());
        const auto ground = lights[lights.size() / 2];
        const auto ink = boundsIn (area, panel, panel, [=] (auto is, auto) { return luminance (is) < ground / 2.0; });
        lights.clear();
        find (ink, panel, panel, collect);
        std::sort (lights.begin(), lights.end());
        lights.resize (lights.size() / 4);
        const auto core = std::accumulate (lights.begin(), lights.end(), 0.0) / static_cast<double> (lights.size());
        EXPECT_GE ((ground + 0.05) / (core + 0.05), unit < 1.0f ? 3.0 : 4.5) << area.toString();
        EXPECT_NEAR (ink.getBottom(), baseline, 0.6f) << area.toString();
    }
}
} // namespace
} // namespace tarvelline::test
