// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/PixelMeters.h"
#include "widgets/Fonts.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <tuple>

namespace tarvelline::test
{
namespace
{
constexpr double tone = 440.0;
const juce::Rectangle<int> upper (130, 66, 1300, 460), lower = upper.translated (0, 590); // the spectrograms
const juce::Rectangle<int> levels (1460, 66, 24, 460);                                    // the scale of their colours
const juce::Colour ink (0xff222222), orange (0xffff8c1a);

/** The colours of levels grow lighter in all three channels; the curve and its halo count for nothing. */
int brightness (juce::Colour colour)
{
    return isOrange (colour) ? 0 : colour.getRed() + colour.getGreen() + colour.getBlue();
}

/** The level in dB that a pixel of a spectrogram stands for, by definition: of what a Hann window of about 0.09 s around its
    middle holds, filled up with zeros to four times its length, the strongest bin within the row, or what lies between the
    two beside it. A row is a 460th from 40 Hz to 16 kHz, or to half the rate. */
double levelAt (const Recording& take, std::size_t outLength, int column, int row)
{
    const auto length = std::exp2 (std::round (std::log2 (0.09 * take.rate)));
    const auto start = std::round ((column + 0.5) * static_cast<double> (outLength) / 1300.0) - length / 2.0;
    const auto binOf = [&] (double r)
    { return 40.0 * std::pow (std::min (16000.0, take.rate / 2.0) / 40.0, r / 460.0) * 4.0 * length / take.rate; };
    const auto power = [&] (double bin)
    {
        double sum = 0.0;

        for (const auto& channel : take.channels)
        {
            const auto turn = std::polar (1.0, -2.0 * std::numbers::pi * bin / (4.0 * length));
            std::complex<double> phase (1.0), found;

            for (int i = 0; i < length; ++i, phase *= turn)
                if (const auto at = start + i; at >= 0.0 && at < static_cast<double> (channel.size()))
                    found += phase * static_cast<double> (channel[static_cast<std::size_t> (at)])
                             * (0.5 - 0.5 * std::cos (2.0 * std::numbers::pi * i / length));

            sum += std::norm (found / (length / 4.0));
        }

        return sum / static_cast<double> (take.channels.size());
    };
    const auto low = binOf (row), high = binOf (row + 1);
    double most = 0.0;

    for (auto bin = std::ceil (low); bin < std::ceil (high); ++bin)
        most = std::max (most, power (bin));

    if (std::ceil (low) == std::ceil (high))
        most = std::lerp (power (std::floor (low)), power (std::floor (low) + 1.0), low - std::floor (low));

    return 10.0 * std::log10 (std::max (1.0e-14, most));
}
} // namespace

class PlotTest : public RenderTest
{
protected:
    /** Draws the plot of a file. */
    void draw (const juce::String& options, const juce::String& name = "in.wav")
    {
        const auto outcome = run (name + " out.wav --plot plot.png " + options);
        ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
        image = juce::ImageFileFormat::loadFrom (file ("plot.png"));
    }

    juce::Image image;
};

// A level, a frequency or a time that is shown elsewhere than it is, or in another colour; a shift that is drawn late, or
// without what moves it.
TEST_F (PlotTest, LevelsAndShiftsStandWhereTheyAre)
{
    for (const auto& [hertz, amplitude, channels, top] : // of the scale, in dB
         { std::tuple { 44100.0, 0.5, 2u, 0.0 }, { 8000.0, 0.05, 1u, -20.0 }, { 192000.0, 0.5, 1u, 0.0 } })
    {
        auto take = sine (tone, hertz, 2.5, amplitude);
        const auto noise = whiteNoise (static_cast<int> (take.size()), noiseSeed, 0.1 * amplitude);
        std::transform (take.begin(), take.end(), noise.begin(), take.begin(), std::plus());
        Recording in { hertz, { take, noise } };
        in.channels.resize (channels);
        write ("in.wav", in);
        file ("moves.csv").replaceWithText ("0,pitch,0\n1,pitch,0\n2,pitch,-2.5,line\n");
        draw ("--set mainRange=0.6 --automate moves.csv");
        const auto out = read ("out.wav");
        const auto length = out.channels[0].size();
        const auto latency = static_cast<double> (length - take.size());

        for (const auto& [panel, recording] :
             { std::pair<juce::Rectangle<int>, const Recording*> { upper, &in }, { lower, &out } })
            for (const auto column : { 0, 2, 300, 450, 1276, 1299 })
                for (const auto y : { 1, 40, 120, 150, 240, 274, 276, 278, 282, 300, 350, 400, 458, 459 })
                {
                    const auto level = std::clamp (levelAt (*recording, length, column, 459 - y), top - 80.0, top);
                    const auto expected = image.getPixelAt (
                        levels.getX(), levels.getY() + std::min (459, juce::roundToInt ((top - level) * 460.0 / 80.0)));
                    const auto shown = image.getPixelAt (panel.getX() + column, panel.getY() + y);
                    EXPECT_NEAR (brightness (shown), brightness (expected), 10) << hertz << " " << column << " " << y;
                }

        // What is automated acts one latency early.
        for (const auto& [second, shift] : { std::pair { 0.6, 0.0 }, { 1.0, 0.0 }, { 1.4, -1.0 }, { 2.4, -2.5 } })
        {
            const auto x = 130 + juce::roundToInt (1300.0 * (second * hertz - latency) / static_cast<double> (length));
            const auto curve = centreOf (image, { x, lower.getY(), 1, lower.getHeight() }, isOrange).y + 0.5;
            EXPECT_NEAR (-4.0 + 5.0 * (lower.getBottom() - curve) / lower.getHeight(), shift, 0.05) << second;
        }
    }
}

// Lines and letters that stand elsewhere than a second hand draws them, or a scale that says something else; the colours of
// the levels along their scale. The take is silent, and one sample is no number; so it is at rates whose windows are longer than
// the engine's transform takes, where something from beyond the take might be shown. A ninth note has no voice. A name
// that is too long has both its ends, and a question mark for what is no sign.
TEST_F (PlotTest, AxesAreAsDrawnByHand)
{
    struct Case
    {
        double seconds, step; // of OUT, and between two times
        juce::String times, shifts, curves;
        double rate = 8000.0;
        int latency = 2048;
    };

    for (const auto& row :
         { Case { 0.32, 0.05, "0.00 0.05 0.10 0.15 0.20 0.25 0.30", "-1 0 +1 +2 +3 +4 +5 +6 +7", "6" },
           Case { 0.95, 0.1, "0.0 0.1 0.2 0.3 0.4 0.5 0.6 0.7 0.8 0.9", "-12 -10 -8 -6 -4 -2 0", "-12" },
           Case { 1.9, 0.2, "0.0 0.2 0.4 0.6 0.8 1.0 1.2 1.4 1.6 1.8", "0 +6 +12 +18 +24", "24" },
           Case { 4.8, 0.5, "0.0 0.5 1.0 1.5 2.0 2.5 3.0 3.5 4.0 4.5", "-24 -12 0 +12 +24", "-24 25" },
           Case { 9.5, 1.0, "0 1 2 3 4 5 6 7 8 9", "-4 -3 -2 -1 0 +1 +2 +3 +4 +5 +6 +7 +8", "-3 0 1 2 3 4 5 7 9" },
           Case { 19.0, 2.0, "0 2 4 6 8 10 12 14 16 18", "0 +2 +4 +6 +8 +10 +12 +14 +16 +18 +20 +22", "22" },
           Case { 48.0, 5.0, "0 5 10 15 20 25 30 35 40 45", "-24 -18 -12 -6 0 +6 +12 +18 +24", "-23 23" },
           Case { 95.0, 10.0, "0:00 0:10 0:20 0:30 0:40 0:50 1:00 1:10 1:20 1:30", "-1 0 +1", "0" },
           Case { 290.0, 30.0, "0:00 0:30 1:00 1:30 2:00 2:30 3:00 3:30 4:00 4:30", "-1 0 +1", "0" },
           Case { 580.0, 60.0, "0:00 1:00 2:00 3:00 4:00 5:00 6:00 7:00 8:00 9:00", "-1 0 +1", "0" },
           Case { 0.099, 0.01, "0.00 0.01 0.02 0.03 0.04 0.05 0.06 0.07 0.08 0.09", "-1 0 +1", "0", 88200.0, 4096 },
           Case { 0.19, 0.02, "0.00 0.02 0.04 0.06 0.08 0.10 0.12 0.14 0.16 0.18", "-1 0 +1", "0", 384000.0, 8192 } })
    {
        const auto length = lengthOf (row.seconds, row.rate);
        auto take = silence (length - row.latency);
        take[10] = std::numeric_limits<float>::quiet_NaN();
        const auto name = row.seconds < 0.4 ? "a" + juce::String::charToString (0xffff)
                                                  + juce::String::repeatedString ("mnop", 50) + ".wav"
                                            : "in.wav";
        write (name, { row.rate, { take, take } });
        auto curves = juce::StringArray::fromTokens (row.curves, false);
        std::vector<std::pair<int, juce::MidiMessage>> notes;

        for (const auto& curve : curves)
            notes.push_back ({ 0, juce::MidiMessage::noteOn (1, 60 + curve.getIntValue(), 0.8f) });

        writeMidi (notes);
        draw (curves.size() == 1 ? "--semitones " + row.curves : "--set midiOptions=0 --midi notes.mid", name);
        curves.removeRange (8, 1);
        juce::Image expected (juce::Image::RGB, 1600, 1200, true);
        juce::Graphics g (expected);
        g.fillAll (juce::Colours::white);

        for (const auto& area : { upper, lower, levels })
        {
            g.setColour (ink);
            g.fillRect (area.expanded (2));
            g.setColour (juce::Colour (0xff131313));
            g.fillRect (area);
        }

        const auto words = [&] (const juce::String& text, float x, float y, float width, float height, int side)
        {
            g.drawText (text.replace ("-", juce::String::charToString (0x2212)),
                        juce::Rectangle<float> (x, y, width, height), side, false);
        };
        const auto turned = [&] (const juce::String& text, float x, float y, float angle)
        {
            const juce::Graphics::ScopedSaveState straight (g);
            g.addTransform (juce::AffineTransform::rotation (angle, x, y));
            words (text, x - 230.0f, y - 13.0f, 460.0f, 26.0f, juce::Justification::centred);
        };
        const auto onRight = [&] (float x, float bottom, const juce::String& text, float part)
        {
            const auto y = bottom - 460.0f * part;
            g.drawLine (x, y, x + 8.0f, y, 2.0f);
            words (text, x + 14.0f, y - 13.0f, 120.0f, 26.0f, juce::Justification::centredLeft);
        };
        g.setColour (ink);
        g.setFont (26.0f);
        const auto known = name.replaceCharacter (0xffff, '?');
        auto title = "Input: " + known;

        for (auto left = known.length() - 1; widthOf (g.getCurrentFont(), title) > 1300.0f; --left)
            title = "Input: " + known.substring (0, (left + 1) / 2) + juce::String::charToString (0x2026)
                    + known.getLastCharacters (left / 2);

        words (title, 130.0f, 24.0f, 1300.0f, 34.0f, juce::Justification::centredLeft);
        words ("Output: out.wav, and the shift that sounds", 130.0f, 614.0f, 1300.0f, 34.0f,
               juce::Justification::centredLeft);
        g.setFont (22.0f);

        for (const auto& panel : { upper.toFloat(), lower.toFloat() })
        {
            for (const auto* hertz : { "50", "100", "200", "500", "1k", "2k", "5k", "10k" })
            {
                const juce::String text (hertz);
                const auto value = text.getDoubleValue() * (text.endsWith ("k") ? 1000.0 : 1.0);
                const auto part = std::log (value / 40.0) / std::log (std::min (16000.0, row.rate / 2.0) / 40.0);
                const auto y = panel.getBottom() - static_cast<float> (part) * 460.0f;

                if (part > 1.0)
                    continue;

                g.drawLine (130.0f, y, 122.0f, y, 2.0f);
                words (text, 0.0f, y - 13.0f, 116.0f, 26.0f, juce::Justification::centredRight);
            }

            turned ("frequency (Hz)", 38.0f, panel.getCentreY(), -juce::MathConstants<float>::halfPi);
            const auto times = juce::StringArray::fromTokens (row.times, false);

            for (int i = 0; i < times.size(); ++i)
            {
                const auto x = 130.0f + 1300.0f * static_cast<float> (row.step * i * row.rate / length);
                g.drawLine (x, panel.getBottom(), x, panel.getBottom() + 8.0f, 2.0f);
                words (times[i], x - 60.0f, panel.getBottom() + 11.0f, 120.0f, 26.0f, juce::Justification::centred);
            }

            words (row.seconds < 60.0 ? "time (s)" : "time (min:s)", 130.0f, panel.getBottom() + 45.0f, 1300.0f, 26.0f,
                   juce::Justification::centred);
        }

        for (int level = -140; level <= -60; level += 10)
            onRight (1484.0f, 526.0f, juce::String (level), static_cast<float> (level + 140) / 80.0f);

        turned ("level (dB)", 1576.0f, 296.0f, juce::MathConstants<float>::halfPi);
        const auto low = std::min (curves[0].getIntValue(), 0) - 1,
                   high = std::max (curves[curves.size() - 1].getIntValue(), 0) + 1;
        const auto partOf = [&] (const juce::String& shift)
        { return static_cast<float> (shift.getIntValue() - low) / static_cast<float> (high - low); };

        for (const auto& curve : curves)
            for (const auto& [colour, width] :
                 { std::pair { juce::Colours::black.withAlpha (0.6f), 7.0f }, { orange, 3.5f } })
            {
                g.setColour (colour);
                g.fillRect (130.0f, 1116.0f - 460.0f * partOf (curve) - width / 2.0f, 1300.0f, width);
            }

        g.setColour (orange.darker (0.25f));

        for (const auto& shift : juce::StringArray::fromTokens (row.shifts, false))
            onRight (1432.0f, 1116.0f, shift, partOf (shift));

        turned ("shift (semitones)", 1524.0f, 886.0f, juce::MathConstants<float>::halfPi);
        const unsigned int colours[] { 0xf3f3f3, 0xcae2e5, 0xa0d0d9, 0x76bcce, 0x51a7c4, 0x3092b6,
                                       0x1a7da6, 0x186891, 0x215378, 0x253e5a, 0x232b3d, 0x1a1b21 };

        for (std::size_t i = 0; i < std::size (colours); ++i)
            EXPECT_EQ (image.getPixelAt (levels.getX(), levels.getY() + 40 * static_cast<int> (i)).toString(),
                       juce::Colour (0xff000000 | colours[i]).toString());

        for (const auto& area : { levels, lower.withWidth (3) }) // in which voices begin
            g.drawImageAt (image.getClippedImage (area), area.getX(), area.getY());

        EXPECT_EQ (image.getPixelAt (140, 76).toString(), "ff131313");
        EXPECT_EQ (differingPixels (image, expected, 2), 0) << row.seconds;
    }
}
} // namespace tarvelline::test
