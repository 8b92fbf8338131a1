// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/PixelMeters.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <numeric>

namespace tarvelline::test
{
namespace
{
constexpr double tone = 440.0;
const juce::Rectangle<int> upper (130, 66, 1300, 460), lower = upper.translated (0, 590); // the spectrograms
const juce::Rectangle<int> levels (1460, 66, 24, 460);                                    // the scale of their colours

/** The colours of levels grow lighter in all three channels; the curve and its halo count for nothing. */
int brightness (juce::Colour colour)
{
    return isOrange (colour) ? 0 : colour.getRed() + colour.getGreen() + colour.getBlue();
}
constexpr int darkest = 60; // the brightness, at most, of what is shown as silent

/** How the ink of a picture's area is spread over its columns; the whole is 1. */
std::vector<double> inkColumns (const juce::Image& image, juce::Rectangle<int> area)
{
    std::vector<double> columns (static_cast<std::size_t> (area.getWidth()));

    for (auto x = 0; x < area.getWidth(); ++x)
        for (auto y = area.getY(); y < area.getBottom(); ++y)
            columns[static_cast<std::size_t> (x)] += 255 - image.getPixelAt (area.getX() + x, y).getBlue();

    const auto sum = std::accumulate (columns.begin(), columns.end(), 0.0);
    std::for_each (columns.begin(), columns.end(), [=] (double& column) { column /= sum; });
    return columns;
}

/** Which of some texts an area's ink is most like. */
juce::String readLabel (const juce::Image& image, juce::Rectangle<int> area, juce::Justification side,
                        const juce::StringArray& texts)
{
    const auto drawn = inkColumns (image, area);
    std::map<double, juce::String> byError;

    for (const auto& text : texts)
    {
        juce::Image expected (juce::Image::RGB, area.getWidth(), area.getHeight(), true);
        juce::Graphics g (expected);
        g.fillAll (juce::Colours::white);
        g.setFont (22.0f);
        g.drawText (text.replace ("-", juce::String::charToString (0x2212)), expected.getBounds(), side, false);
        const auto wanted = inkColumns (expected, expected.getBounds());
        byError[std::transform_reduce (drawn.begin(), drawn.end(), wanted.begin(), 0.0, std::plus(),
                                       [] (double a, double b) { return std::abs (a - b); })] = text;
    }

    return byError.begin()->second;
}

/** Values and pixels along one axis: as its first and last marks have them, which have the values given. */
struct Axis
{
    double pixelAt (double value) const
    {
        return firstPixel + (value - first) * (lastPixel - firstPixel) / (last - first);
    }
    double valueAt (double pixel) const
    {
        return first + (pixel - firstPixel) * (last - first) / (lastPixel - firstPixel);
    }

    double first, last, firstPixel = 0.0, lastPixel = 0.0;
};
} // namespace

class PlotTest : public RenderTest
{
protected:
    /** Draws the plot of in.wav. */
    void draw (const juce::String& options)
    {
        const auto outcome = run ("in.wav out.wav --plot plot.png " + options);
        ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
        image = juce::ImageFileFormat::loadFrom (file ("plot.png"));
    }

    /** An axis by its marks on a line of pixels, and their labels, each read, as one of those, in an area beside its mark. */
    Axis axis (juce::Point<int> start, juce::Point<int> step, int length, juce::Rectangle<int> labelArea,
               juce::Justification side, const juce::String& texts, Axis found)
    {
        const auto labels = juce::StringArray::fromTokens (texts, false);
        std::vector<double> marks;

        for (int i = 0, ink = 0; i < length; ++i, start += step)
        {
            const auto isWhite = image.getPixelAt (start.x, start.y) == juce::Colours::white;

            if (isWhite && ink > 0)
            {
                const auto mark = (step.x > 0 ? start.x : start.y + 1) - 0.5 * step.x * ink - 0.5 * step.y * ink;
                const auto here =
                    step.x > 0 ? start.withX (juce::roundToInt (mark)) : start.withY (juce::roundToInt (mark));
                EXPECT_EQ (readLabel (image, labelArea + here, side, labels), labels[static_cast<int> (marks.size())]);
                marks.push_back (mark);
            }

            ink = isWhite ? 0 : ink + 1;
        }

        EXPECT_EQ (static_cast<int> (marks.size()), labels.size());
        marks.resize (std::max<std::size_t> (marks.size(), 1));
        return { found.first, found.last, marks.front(), marks.back() };
    }

    /** The middle of the brightest pixels of a column. */
    double brightestRow (juce::Rectangle<int> panel, int x) const
    {
        auto most = -1, count = 0, sum = 0;

        for (auto y = panel.getY(); y < panel.getBottom(); ++y)
        {
            const auto here = brightness (image.getPixelAt (x, y));

            if (here > most)
                most = here, count = sum = 0;

            if (here == most)
                ++count, sum += y;
        }

        return static_cast<double> (sum) / count + 0.5;
    }

    juce::Image image;
};

// A picture that lacks a part, has it elsewhere than its axes say, or leaves out the automation; short and fine, long and
// coarse. A tone goes down by three semitones in the middle half of the time.
TEST_F (PlotTest, PartsStandWhereTheAxesSay)
{
    struct Case
    {
        double rate, seconds, latency;
        juce::String times, hertz;
        double lastHertz;
    };
    const std::vector<Case> cases {
        { 96000.0, 2.0, 4096 / 96000.0, "0.0 0.5 1.0 1.5 2.0", "50 100 200 500 1k 2k 5k 10k", 10000.0 },
        { 8000.0, 80.0, 2048 / 8000.0, "0:00 0:10 0:20 0:30 0:40 0:50 1:00 1:10 1:20", "50 100 200 500 1k 2k", 2000.0 }
    };
    const juce::Justification left (juce::Justification::centredLeft), right (juce::Justification::centredRight),
        middle (juce::Justification::centred);

    for (const auto& row : cases)
    {
        write ("in.wav", { row.rate, { sine (tone, row.rate, row.seconds, 0.5) } });
        file ("moves.csv")
            .replaceWithText ("0,mainWheelPar,0.5\n" + juce::String (row.seconds * 0.25) + ",mainWheelPar,0.5\n"
                              + juce::String (row.seconds * 0.75) + ",mainWheelPar,0.25,line\n");
        draw ("--automate moves.csv");
        EXPECT_EQ (filesThere().joinIntoString (" "), "in.wav moves.csv out.wav plot.png");
        EXPECT_EQ (image.getPixelAt (40, 40), juce::Colours::white);

        const auto decibels =
            axis ({ levels.getRight() + 5, levels.getBottom() + 4 }, { 0, -1 }, levels.getHeight() + 8,
                  { 9, -13, 56, 26 }, left, "-80 -70 -60 -50 -40 -30 -20 -10 0", { -80.0, 0.0 });
        const auto semitones = axis ({ lower.getRight() + 6, lower.getBottom() + 4 }, { 0, -1 }, lower.getHeight() + 8,
                                     { 10, -13, 56, 26 }, left, "-4 -3 -2 -1 0 +1", { -4.0, 1.0 });

        for (const auto& panel : { upper, lower })
        {
            const auto octaves =
                axis ({ panel.getX() - 5, panel.getBottom() }, { 0, -1 }, panel.getHeight(), { -65, -13, 56, 26 },
                      right, row.hertz, { std::log2 (50.0), std::log2 (row.lastHertz) });
            const auto time = axis ({ panel.getX() - 3, panel.getBottom() + 5 }, { 1, 0 }, panel.getWidth() + 6,
                                    { -40, 6, 80, 26 }, middle, row.times, { 0.0, row.seconds });

            // What is automated acts one latency early.
            for (const auto& [part, shift] : { std::pair { 0.1, 0.0 }, { 0.25, 0.0 }, { 0.45, -1.2 }, { 0.9, -3.0 } })
            {
                const auto x = juce::roundToInt (time.pixelAt (part * row.seconds - row.latency));
                const auto y = brightestRow (panel, x);
                const auto curve = centreOf (image, { x, panel.getY(), 1, panel.getHeight() }, isOrange).y + 0.5;
                const auto heard = 12.0 * (octaves.valueAt (y) - std::log2 (tone));
                EXPECT_NEAR (heard, panel == lower ? shift : 0.0, 0.25) << part; // a row is 0.2 semitones
                EXPECT_LE (brightness (image.getPixelAt (x, panel.getY() + 20)), darkest);

                if (panel == lower)
                    EXPECT_NEAR (semitones.valueAt (curve), shift, 0.05) << part;
                else
                    EXPECT_NEAR (
                        brightness (image.getPixelAt (x, static_cast<int> (y))),
                        brightness (image.getPixelAt (levels.getX(), juce::roundToInt (decibels.pixelAt (-6.0)))), 10);
            }
        }
    }
}

// A rate whose window is longer than the engine's transform takes; silence as the loudest colour; a take shorter than the
// window that is drawn with something from beyond its end; samples that are no numbers.
TEST_F (PlotTest, SilenceIsDarkAtEveryRate)
{
    for (const auto& [hertz, channels] :
         { std::pair { 8000.0, 1u }, { 88200.0, 2u }, { 192000.0, 1u }, { 384000.0, 2u } })
    {
        auto samples = silence (lengthOf (0.05, hertz));
        samples[10] = std::numeric_limits<float>::quiet_NaN();
        write ("in.wav", { hertz, { channels, samples } });
        draw ("");

        for (const auto& panel : { upper, lower })
            for (auto x = panel.getX(); x < panel.getRight(); x += 9)
                ASSERT_LE (brightness (image.getPixelAt (x, static_cast<int> (brightestRow (panel, x)))), darkest)
                    << hertz;
    }
}

// A long name without its end, or drawn over the scale; a box in place of a sign that no font has.
TEST_F (PlotTest, NamesCanBeReadAtBothEnds)
{
    const auto titleOf = [&] (const juce::String& name)
    {
        write ("in.wav", { 8000.0, { silence (400) } });
        file ("in.wav").copyFileTo (file (name));
        EXPECT_EQ (run ("'" + name + "' out.wav --plot plot.png").exitCode, 0);
        image = juce::ImageFileFormat::loadFrom (file ("plot.png"));
        return image.getClippedImage ({ 0, 0, levels.getX(), upper.getY() - 4 }).createCopy();
    };
    const auto many = juce::String::repeatedString ("m", 100);
    const auto title = titleOf (many + many + ".wav");
    EXPECT_NE (differingPixels (titleOf ("M" + many + many + ".wav"), title, 0), 0);
    EXPECT_NE (differingPixels (titleOf (many + many + "M.wav"), title, 0), 0);
    EXPECT_EQ (differingPixels (titleOf (many + "M" + many + ".wav"), title, 0), 0);
    const auto ink = boundsOf (title, [] (juce::Colour colour) { return colour != juce::Colours::white; });
    EXPECT_TRUE (upper.getX() <= ink.getX() && ink.getRight() <= upper.getRight()) << ink.toString();
    EXPECT_EQ (differingPixels (titleOf ("a" + juce::String::charToString (0xffff) + ".wav"), titleOf ("a?.wav"), 0),
               0);
}
} // namespace tarvelline::test
