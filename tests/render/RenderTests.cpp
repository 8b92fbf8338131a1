// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/Meters.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>

namespace tarvelline::test
{
namespace
{
constexpr double rate = 44100.0;
constexpr int latency = 2048; // at 44.1 kHz
constexpr double tone = 440.0;

/** The shift in cents that a wheel asks for, as the engine makes it: whole samples in a hop going in and coming out. */
double engineCents (double semitones)
{
    const auto ratio = static_cast<double> (std::exp (static_cast<float> (semitones) * 0.05776231f));
    const auto hopFor = [] (double span) { return std::trunc (std::trunc (span) / 8.0); };
    return 1200.0 * std::log2 (hopFor (2048.0 * std::min (ratio, 1.0)) / hopFor (2048.0 / std::max (ratio, 1.0)));
}

Samples part (const Samples& samples, double from, double to)
{
    return { samples.begin() + lengthOf (from, rate), samples.begin() + lengthOf (to, rate) };
}

double centsIn (const Samples& samples, double from, double to)
{
    return centsBetween (tone, frequencyHz (part (samples, from, to), rate));
}

juce::MidiMessage noteOn (int note) { return juce::MidiMessage::noteOn (1, note, 0.8f); }
juce::MidiMessage noteOff (int note) { return juce::MidiMessage::noteOff (2, note); }
} // namespace

// Latency that is not taken out, or known too late, or a tail cut off, at each frame length of the engine.
TEST_F (RenderTest, DryOutputIsTheInputToTheBitAndOneLatencyLonger)
{
    for (const auto& [hertz, late] : { std::pair { 44100.0, 2048 }, { 96000.0, 4096 }, { 192000.0, 8192 } })
        for (const auto channels : { 1, 2 })
        {
            Recording in { hertz, { whiteNoise (30000) } };

            if (channels == 2)
                in.channels.push_back (whiteNoise (30000, noiseSeed + 1));

            write ("in.wav", in);
            const auto outcome = run ("in.wav out.wav --set mixerPar=0 --semitones 3 --block 441");
            const auto out = read ("out.wav");
            ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
            EXPECT_TRUE (outcome.text.contains ("latency " + juce::String (late) + " samples")) << outcome.text;
            EXPECT_EQ (out.rate, hertz);
            ASSERT_EQ (out.channels.size(), in.channels.size());

            for (std::size_t c = 0; c < out.channels.size(); ++c)
            {
                in.channels[c].resize (in.channels[c].size() + static_cast<std::size_t> (late));
                EXPECT_TRUE (sameBits (out.channels[c], in.channels[c])) << hertz << " Hz, channel " << c;
            }
        }
}

// A file of another kind, or samples rounded to fewer bits than asked for.
TEST_F (RenderTest, IntegerFilesKeepTwentyFourBits)
{
    write ("in.aiff", { 48000.0, { whiteNoise (10000) } });
    ASSERT_EQ (run ("in.aiff out.wav --set mixerPar=0 --bits 24").exitCode, 0);
    auto expected = read ("in.aiff").channels.front();
    expected.resize (expected.size() + latency);
    EXPECT_TRUE (sameBits (read ("out.wav").channels.front(), expected));
}

// A setting that comes too late: the wheel would still be on its way in the first tenth of a second. A wrong span would be
// off by semitones, swapped channels by a fifth.
TEST_F (RenderTest, StandsAtTheShiftFromTheStart)
{
    for (const auto semitones : { -12, -7, 5, 6, 7, 24 })
    {
        write ("in.wav", { rate, { sine (tone, rate, 1.0, 0.5), sine (tone * 1.5, rate, 1.0, 0.5) } });
        ASSERT_EQ (run ("in.wav out.wav --semitones=" + juce::String (semitones)).exitCode, 0);
        const auto out = read ("out.wav");
        EXPECT_NEAR (centsIn (out.channels[0], 0.05, 0.15), engineCents (semitones), 0.5) << semitones;
        EXPECT_NEAR (centsIn (out.channels[0], 0.2, 0.9), engineCents (semitones), 0.01) << semitones;
        EXPECT_NEAR (centsIn (out.channels[1], 0.2, 0.9), engineCents (semitones) + centsBetween (2.0, 3.0), 0.01)
            << semitones;
    }
}

// A change that comes at another sample than its own: the mixer goes from shifted to dry within one.
TEST_F (RenderTest, AutomationComesAtItsSampleWhateverTheBlocks)
{
    write ("in.wav", { rate, { whiteNoise (30000) } });
    file ("moves.csv")
        .replaceWithText ("seconds,parameterId,value\r\n\n # the dry signal\n0.5, mixerPar, 0 # from here\n");
    const auto input = read ("in.wav").channels.front();

    for (const auto block : { 1, 512, 8192 })
    {
        const auto output = render ("--semitones 2 --automate moves.csv --block " + juce::String (block));
        auto firstDry = input.size();

        while (firstDry > 0 && output[firstDry - 1] == input[firstDry - 1])
            --firstDry;

        EXPECT_EQ (firstDry, static_cast<std::size_t> (22050 - latency)) << block;
    }
}

// Notes handed on early, late, in the wrong tempo, or lost; an event dropped because others come at the same time.
TEST_F (RenderTest, NotesTransposeAndBlocksDoNotMatter)
{
    write ("in.wav", { rate, { sine (tone, rate, 3.0, 0.5) } });
    writeMidi ("notes.mid",
               { { 960, noteOn (67) }, { 960, noteOff (67) }, { 960, juce::MidiMessage::pitchWheel (1, 16383) } }, 0.25,
               480,
               0.75); // tick 960 is at 1 s

    const auto output = render ("--midi notes.mid --set mainRange=0 --set mainGravityPar=1");
    EXPECT_TRUE (
        sameBits (part (output, 0.1, 0.9), part (sine (tone, rate, 3.0, 0.5), 0.1, 0.9))); // at rest: the dry signal
    EXPECT_NEAR (centsIn (output, 2.0, 2.9), engineCents (8), 0.01); // seven by the note, one by the bend

    for (const auto block : { 1, 4096 })
        EXPECT_TRUE (sameBits (
            render ("--midi notes.mid --set mainRange=0 --set mainGravityPar=1 --block " + juce::String (block)),
            output))
            << block;
}

TEST_F (RenderTest, VoicesSoundTogetherFromTheirTime)
{
    write ("in.wav", { rate, { sine (tone, rate, 2.0, 0.5) } });
    const auto on = 480, off = 1440; // 0.5 s and 1.5 s
    writeMidi ("chord.mid", { { on, noteOn (48) },
                              { on, noteOn (60) },
                              { on, noteOn (67) },
                              { off, noteOff (48) },
                              { off, noteOff (60) },
                              { off, noteOff (67) } });
    const auto output = render ("--midi chord.mid --set midiOptions=0");

    EXPECT_EQ (peak (part (output, 0.0, 0.4999)), 0.0f);
    EXPECT_NEAR (static_cast<double> (onsetIndex (output, 1.0e-3f)), 22050.0, 20.0);
    EXPECT_EQ (peak (part (output, 1.6, 2.0)), 0.0f); // faded out within 1/15 s

    for (const auto note : { 48, 60, 67 })
        EXPECT_NEAR (componentDb (part (output, 0.7, 1.4), tone * std::exp2 (engineCents (note - 60) / 1200.0), rate),
                     -6.0, 0.4)
            << note;
}

// A curve on the wrong side or scale of its axis.
TEST_F (RenderTest, PlotDrawsTheShiftThatSounds)
{
    write ("in.wav", { rate, { sine (tone, rate, 1.0, 0.5) } });
    std::vector<double> curveRows;

    for (const auto semitones : { "-5", "5" })
    {
        ASSERT_EQ (run ("in.wav out.wav --plot plot.png --semitones " + juce::String (semitones)).exitCode, 0);
        const auto image = juce::ImageFileFormat::loadFrom (file ("plot.png"));
        ASSERT_TRUE (image.isValid());
        double rows = 0.0, count = 0.0;

        for (int y = 0; y < image.getHeight(); ++y)
            if (image.getPixelAt (image.getWidth() / 2, y) == juce::Colour (0xffff8c1a))
            {
                rows += y;
                count += 1.0;
            }

        ASSERT_GT (count, 0.0);
        curveRows.push_back (rows / count);
    }

    // The axes run from -6 to 1 and from -1 to 6 over the 460 rows of the spectrogram.
    EXPECT_NEAR (curveRows[0] - curveRows[1], 460.0 * 5.0 / 7.0, 1.0);
    EXPECT_EQ (filesThere().joinIntoString (" "), "in.wav out.wav plot.png");
}
} // namespace tarvelline::test
