// SPDX-License-Identifier: GPL-3.0-or-later
// What the whole window shows and where it answers, in both sizes and on screens of both kinds, measured in its picture. The
// places are written down here, in units of a window of 1024 x 576.
#include "tests/editor/EditorRig.h"
#include "tests/support/PixelMeters.h"

#include <cmath>
#include <numeric>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;
using Place = juce::Point<float>;
using Area = juce::Rectangle<float>;

/** A mark that turns about a place. */
struct Mark
{
    const char* parameter; // nullptr: the sound of the wheel at this place turns it
    Place centre;
    float radius; // of the circle on which its middle goes
    float surface;
    double contrast; // with what it covers, at least
};

constexpr Mark marks[] = {
    { mainWheelPar, { 257.0f, 231.0f }, 146.4f, 72.0f, 3.5 }, // the bar on the puck
    { timbWheelPar, { 769.0f, 231.0f }, 146.4f, 72.0f, 3.5 },
    { nullptr, { 256.7f, 230.7f }, 93.9f, 78.0f, 2.8 }, // the dial's index
    { nullptr, { 769.0f, 231.0f }, 93.9f, 78.0f, 2.8 },
    { mainGravityPar, { 123.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { timbGravityPar, { 635.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { mainInertiaPar, { 255.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { timbInertiaPar, { 767.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { mainSmoothPar, { 389.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { timbSmoothPar, { 901.5f, 460.5f }, 25.0f, 71.0f, 7.0 },
    { mixerPar, { 470.5f, 527.5f }, 15.3f, 26.0f, 5.5 },
};

/** What the mouse reaches. */
struct Control
{
    const char* id;
    Area area;
    double outline = 0.0; // the artwork around it is darker than this; 0: nothing stands around it
};

const Control controls[] = {
    { "pitchRangeBox", { 24.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "timbreRangeBox", { 536.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "pitchSnapButton", { 416.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "timbreSnapButton", { 928.0f, 22.0f, 74.0f, 50.0f }, 0.009 },
    { "midiModeButton", { 12.0f, 515.0f, 63.0f, 48.0f }, 0.009 },
    { "sizeButton", { 472.0f, 331.0f, 39.0f, 96.0f } },
    { "mainWheelSlider", { 92.0f, 66.0f, 330.0f, 330.0f } },
    { "timbreWheelSlider", { 604.0f, 66.0f, 330.0f, 330.0f } },
    { "pitchGravitySlider", { 85.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "timbreGravitySlider", { 597.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "pitchInertiaSlider", { 217.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "timbreInertiaSlider", { 729.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "pitchSmoothSlider", { 351.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "timbreSmoothSlider", { 863.0f, 422.0f, 77.0f, 77.0f }, 0.03 },
    { "mixerSlider", { 447.0f, 504.0f, 47.0f, 47.0f }, 0.03 },
};

const Area piano (89.0f, 526.0f, 335.0f, 36.0f);
const Area dials[] = { { 174.0f, 148.0f, 165.0f, 165.0f }, { 686.0f, 148.0f, 165.0f, 165.0f } }; // their black discs

struct View
{
    int height;
    bool full;
    float scale; // pixels of the screen a pixel of the host's
};

class Window : public testing::TestWithParam<View>
{
protected:
    bool shows (float x) const { return GetParam().full || x < 512.0f; }

    juce::Image picture()
    {
        for (auto i = 0; i < 25; ++i) // until no read-out shows
            rig.editor->timerCallback();

        return pictureOf (*rig.editor, GetParam().scale);
    }

    void tickDials (int times = 1)
    {
        for (auto i = 0; i < times; ++i)
            for (const auto* dial : { "pitchDial", "timbreDial" })
                ((juce::Timer&) rig.control<FollowDial> (dial)).timerCallback(); // a private base, hence this cast
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

    void expectEqual (Area found, Area expected, float tolerance, const char* what) const
    {
        EXPECT_NEAR (found.getX(), expected.getX(), tolerance) << what;
        EXPECT_NEAR (found.getY(), expected.getY(), tolerance) << what;
        EXPECT_NEAR (found.getRight(), expected.getRight(), tolerance) << what;
        EXPECT_NEAR (found.getBottom(), expected.getBottom(), tolerance) << what;
    }

    EditorRig rig { GetParam().height, GetParam().full };
    const float hostPixel = 576.0f / static_cast<float> (GetParam().height); // in units; controls lie on whole ones
    const float unit = GetParam().scale / hostPixel;                         // in pixels of the screen
    const float slack = GetParam().height == 576 ? 1.2f : 2.2f * hostPixel;
};

INSTANTIATE_TEST_SUITE_P (Views, Window,
                          testing::Values (View { 576, true, 1.0f }, View { 576, true, 2.0f },
                                           View { 576, false, 1.0f }, View { 400, false, 2.0f },
                                           View { 288, true, 1.0f }, View { 258, false, 2.0f }));

// A pointer off its knob, on another's parameter or as pale as its ground; a dial that follows the other wheel; a puck that
// stands upright on its way round, or is enlarged on a fine screen.
TEST_P (Window, TurnsEachMarkAboutItsPlace)
{
    const auto share = [] (size_t mark, int step)
    { return std::fmod (0.13f + 0.37f * static_cast<float> (mark) + 0.29f * static_cast<float> (step), 1.0f); };
    juce::Image before;

    for (auto step = 0; step < 5; ++step)
    {
        for (size_t i = 0; i < std::size (marks); ++i)
            if (marks[i].parameter != nullptr)
                rig.set (marks[i].parameter, share (i, step));

        rig.processor.mainWheel.point = share (2, step);
        rig.processor.timbWheel.point = share (3, step);
        tickDials();
        const auto now = picture();

        for (size_t i = 0; i < std::size (marks) && step > 0; ++i)
        {
            const auto& mark = marks[i];

            if (! shows (mark.centre.x))
                continue;

            const auto angle = (1.2f + 1.6f * share (i, step)) * juce::MathConstants<float>::pi;
            const auto place = mark.centre.getPointOnCircumference (mark.radius, angle);
            const auto ink = find (Area (32.0f, 32.0f).withCentre (place), now, before,
                                   [&] (juce::Colour is, juce::Colour was) {
                                       return is != was && (mark.radius > 50.0f ? isOrange (is) : luminance (is) > 0.4);
                                   });
            ASSERT_FALSE (ink.empty()) << i << ' ' << step;
            const auto middle = std::accumulate (ink.begin(), ink.end(), Place()) / static_cast<float> (ink.size());
            EXPECT_LE (middle.getDistanceFrom (place), slack) << i << ' ' << step;
            EXPECT_NEAR (static_cast<float> (ink.size()) / (unit * unit * mark.surface), 1.0f, 0.04f + 0.14f / unit)
                << i << ' ' << step;

            const auto pixel = (middle * unit).toInt();
            EXPECT_GE (contrastRatio (now.getPixelAt (pixel.x, pixel.y), before.getPixelAt (pixel.x, pixel.y)),
                       mark.contrast)
                << i << ' ' << step;
        }

        before = now;
    }
}

// A control moved without its artwork, artwork without its control, text beside its frame; a button that flashes under the
// mouse, or does not answer a press.
TEST_P (Window, AnswersWhereItsArtworkStands)
{
    const auto reached = [&] (Place at)
    {
        const auto pixel = at / hostPixel;
        const auto* found = rig.editor->getComponentAt (static_cast<int> (std::floor (pixel.x)),
                                                        static_cast<int> (std::floor (pixel.y)));

        while (found != nullptr && found->getComponentID().isEmpty())
            found = found->getParentComponent();

        return found != nullptr ? found->getComponentID() : juce::String();
    };
    const auto plain = picture();
    const auto edge = GetParam().height == 576 ? 0.4f : 1.6f * hostPixel;

    for (const auto& [id, area, outline] : controls)
    {
        if (! shows (area.getX()))
            continue;

        const auto inner = area.reduced (edge), outer = area.expanded (edge);

        for (const auto share : { Place (0.5f, 0.0f), { 0.5f, 1.0f }, { 0.0f, 0.5f }, { 1.0f, 0.5f } })
        {
            EXPECT_EQ (reached (inner.getRelativePoint (share.x, share.y)), id) << share.toString();
            EXPECT_NE (reached (outer.getRelativePoint (share.x, share.y)), id) << share.toString();
        }

        if (auto* button = dynamic_cast<juce::Button*> (&rig.control (id)))
        {
            button->setState (juce::Button::buttonOver);
            EXPECT_TRUE (boundsIn (area, picture(), plain).isEmpty()) << id;
            button->setState (juce::Button::buttonDown);
            expectEqual (boundsIn (area.expanded (8.0f), picture(), plain), area, slack, id);
            button->setState (juce::Button::buttonNormal);
        }

        if (outline > 0.0 && outline < 0.01)
        {
            const auto text =
                boundsIn (area, plain, plain, [] (juce::Colour colour, auto) { return luminance (colour) > 0.6; });
            EXPECT_NEAR (text.getCentreX(), area.getCentreX(), 3.2f) << id;
            EXPECT_NEAR (text.getCentreY(), area.getCentreY(), 3.2f) << id;
        }
    }

    for (auto* child : rig.editor->getChildren())
        child->setVisible (false);

    const auto panel = picture();
    const auto expectArtwork = [&] (Area area, Area searched, double outline, float larger, const char* id)
    {
        if (unit < 1.0f || outline == 0.0) // where a line is finer than a pixel it is no longer as dark
            return;

        const auto dark =
            boundsIn (searched, panel, panel, [=] (juce::Colour colour, auto) { return luminance (colour) < outline; });
        EXPECT_NEAR (dark.getCentreX(), area.getCentreX(), 1.5f) << id;
        EXPECT_NEAR (dark.getWidth(), area.getWidth() + larger, 2.0f) << id;
        EXPECT_NEAR (dark.getY(), area.getY() - larger / 2.0f, 2.0f) << id;
    };

    for (const auto& [id, area, outline] : controls)
        if (shows (area.getX()))
            expectArtwork (area,
                           area.expanded (3.0f).withTrimmedBottom (outline > 0.01 ? area.getHeight() / 2.0f : 0.0f),
                           outline, -3.0f, id);

    expectArtwork (piano, piano.expanded (3.0f), 0.009, 2.0f, "piano");

    for (const auto& dial : dials)
        if (shows (dial.getX()))
            expectArtwork (dial, dial.expanded (12.0f), 0.0025, 0.0f, "dial");
}

// A scale beside its wheel or for the other's range, a number or a line off the middle of its dial, keys beside the piano.
TEST_P (Window, StandsAroundTheWheelsAndOnThePiano)
{
    rig.set (mainRange, 2.0f);
    const auto plain = picture();
    const auto isDark = [] (juce::Colour colour) { return luminance (colour) < 0.09; };

    for (const auto& [dial, steps] : { std::pair { dials[0], 6u }, { dials[1], 12u } })
    {
        if (! shows (dial.getX()))
            continue;

        const auto centre = (dial.getCentre() + Place (0.5f, 0.5f)) * unit;
        const auto ticks = litRuns (plain, centre, 184.9f * unit, isDark);
        EXPECT_EQ (litRuns (plain, centre, 167.7f * unit, isDark).size(), 0u);
        EXPECT_EQ (litRuns (plain, centre, 172.0f * unit, isDark).size(), steps + 1u);

        if (unit > 0.6f) // else ticks are finer than pixels
        {
            ASSERT_EQ (ticks.size(), 5 * steps + 1);

            for (size_t i = 0; i < ticks.size(); ++i)
                EXPECT_NEAR (ticks[i] / juce::MathConstants<float>::pi,
                             1.2f + 0.32f * static_cast<float> (i) / static_cast<float> (steps), 0.0012f * hostPixel);
        }

        const auto number = boundsIn (dial.reduced (20.0f, 60.0f), plain, plain,
                                      [] (juce::Colour colour, auto) { return luminance (colour) > 0.06; });
        expectEqual (number, Area (66.5f, 24.0f).withCentre (dial.getCentre() + Place (0.2f, 0.4f)), slack, "number");
    }

    tickDials (501);
    rig.processor.voices.keyLit[0] = rig.processor.voices.keyLit[47] = 1;
    const auto now = picture();
    expectEqual (boundsIn (piano.expanded (20.0f), now, plain), piano, slack, "both ends of the piano");

    for (const auto& dial : dials)
        if (shows (dial.getX()))
            expectEqual (boundsIn (dial, now, plain),
                         Area (81.0f, 9.5f).withCentre (dial.getCentre() + Place (0.2f, 20.7f)), slack, "line");
}
} // namespace
} // namespace tarvelline::test
