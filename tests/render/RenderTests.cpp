// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/Meters.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>

namespace tarvelline::test
{
namespace
{
constexpr double rate = 44100.0;
constexpr int latency = 2048; // at 44.1 kHz
constexpr double tone = 440.0;

/** The shift that sounds, in cents: the engine's hops are whole samples, 256 or fewer going in and coming out. */
double hopCents (int in, int out) { return 1200.0 * std::log2 (static_cast<double> (in) / out); }

Samples part (const Samples& samples, double from, double to)
{
    return { samples.begin() + lengthOf (from, rate), samples.begin() + lengthOf (to, rate) };
}

double centsIn (const Samples& samples, double from, double to)
{
    return centsBetween (tone, frequencyHz (part (samples, from, to), rate));
}

} // namespace

// Latency that is not taken out, or known too late, or a tail cut off, at each frame length of the engine.
TEST_F (RenderTest, DryOutputIsTheInputToTheBitAndOneLatencyLonger)
{
    for (const auto& [hertz, late] : { std::pair { 44100.0, 2048 }, { 96000.0, 4096 }, { 192000.0, 8192 } })
        for (const auto channels : { 1, 2 })
        {
            const auto noise = whiteNoise (30000), other = whiteNoise (30000, noiseSeed + 1);
            Recording in { hertz, { noise, other } };
            in.channels.resize (static_cast<std::size_t> (channels));
            write ("in.wav", in);
            const auto outcome = run ("in.wav out.wav --set mixerPar=0 --semitones 3 --block 441");
            const auto out = read ("out.wav");
            EXPECT_TRUE (outcome.text.contains ("latency " + juce::String (late) + " samples")) << outcome.text;
            EXPECT_EQ (out.rate, hertz);

            for (auto& channel : in.channels)
                channel.resize (channel.size() + static_cast<std::size_t> (late));

            EXPECT_EQ (out.channels, in.channels) << hertz;
        }
}

// Samples of another kind or order of bytes, or rounded to fewer bits than asked for; notes in the file that get lost.
TEST_F (RenderTest, FormatsKeepTwentyFourBitsAndNotes)
{
    juce::StringPairArray notes;
    notes.set (juce::WavAudioFormat::riffInfoTitle, "Blue tune");
    notes.set (juce::WavAudioFormat::bwavTimeReference, "441000");
    write ("in.aiff", { 48000.0, { whiteNoise (10000) } });
    write ("notes.wav", { 48000.0, { read ("in.aiff").channels.front() } }, notes);
    auto expected = read ("in.aiff").channels.front();
    expected.resize (expected.size() + 2 * latency);

    for (const juce::String between : { "x.flac", "x.aif", "x.wav" })
    {
        ASSERT_EQ (run ("notes.wav " + between + " --set mixerPar=0 --bits 24").exitCode, 0);
        ASSERT_EQ (run (between + " out.wav --set mixerPar=0").exitCode, 0);
        EXPECT_TRUE (sameBits (read ("out.wav").channels.front(), expected)) << between;
    }

    juce::MemoryBlock bytes; // of what was made by way of x.wav
    file ("out.wav").loadFileAsData (bytes);
    EXPECT_NE (std::string_view (static_cast<char*> (bytes.getData()), bytes.getSize()).find ("Blue tune"),
               std::string_view::npos);
}

// Rounding without dither, whose error follows the sound: of a level between two steps it would make one of them.
TEST_F (RenderTest, SixteenBitsAreDithered)
{
    constexpr double step = 1.0 / 32768.0;
    write ("in.wav", { rate, { Samples (100000, static_cast<float> (7.3 * step)) } });
    const auto output = render ("--set mixerPar=0 --bits 16");
    double sum = 0.0, squares = 0.0;

    for (int i = 0; i < 100000; ++i)
    {
        const auto error = output[static_cast<std::size_t> (i)] / step - 7.3;
        sum += error;
        squares += error * error;
    }

    EXPECT_NEAR (sum / 100000, 0.0, 0.01);            // measured: 0.001 steps
    EXPECT_NEAR (squares / 100000, 3.0 / 12.0, 0.01); // rounding and two dice, a twelfth each
}

// A setting that comes too late: the wheel would still be on its way in the first tenth of a second. A wrong span would be
// off by semitones, swapped channels by a fifth.
TEST_F (RenderTest, StandsAtTheShiftFromTheStart)
{
    for (const auto& [semitones, in, out] :
         { std::tuple { -12, 127, 256 }, { -7, 170, 256 }, { 6, 256, 181 }, { 24, 256, 63 } })
    {
        write ("in.wav", { rate, { sine (tone, rate, 1.0, 0.5), sine (tone * 1.5, rate, 1.0, 0.5) } });
        ASSERT_EQ (run ("in.wav out.wav --semitones=" + juce::String (semitones)).exitCode, 0);
        const auto made = read ("out.wav").channels;
        EXPECT_NEAR (centsIn (made[0], 0.05, 0.15), hopCents (in, out), 0.5) << semitones;
        EXPECT_NEAR (centsIn (made[0], 0.2, 0.9), hopCents (in, out), 0.01) << semitones;
        EXPECT_NEAR (centsIn (made[1], 0.2, 0.9), hopCents (in, out) + centsBetween (2.0, 3.0), 0.01) << semitones;
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

// A line that begins or ends elsewhere, jumps, or depends on the blocks. Voices without notes are silent, so that the mixer
// alone is heard.
TEST_F (RenderTest, AutomationMovesInStraightLines)
{
    write ("in.wav", { rate, { Samples (30000, 1.0f) } });
    file ("fade.csv").replaceWithText ("seconds,parameterId,value,shape\n0.4,mixerPar,1,line\n0.2,mixerPar,0\n");
    const juce::String options = "--set midiOptions=0 --set mixerPar=0 --automate fade.csv --block ";
    const auto output = render (options + "512");

    for (std::size_t i = 0; i + latency < 30000; ++i)
        ASSERT_NEAR (output[i], std::clamp (2.0 - static_cast<double> (i + latency) / 8820.0, 0.0, 1.0), 33.0 / 8820.0)
            << i;

    for (const auto block : { "1", "77" })
        EXPECT_TRUE (sameBits (render (options + block), output)) << block;
}

// A setting that a state leaves out, sets in the wrong order (a range moves its wheel) or puts before the command line's.
TEST_F (RenderTest, StatesAndPresetsSoundLikeTheirSettings)
{
    write ("in.wav", { rate, { whiteNoise (30000) } });
    const juce::String made = "--set mainWheelPar=0.7 --set mainRange=1 --set mixerPar=0.9 --set timbWheelPar=0.2",
                       more = " --set toggleSize=1";
    const auto expected = render (made + more);
    ASSERT_EQ (run ("--save-state x.vstpreset " + made).exitCode, 0);
    EXPECT_TRUE (sameBits (render ("--state x.vstpreset" + more), expected));

    // The bare block that a host is handed lies in the file, from its 49th byte on.
    ASSERT_EQ (shell ("tail -c +49 x.vstpreset > bare").exitCode, 0);
    EXPECT_TRUE (sameBits (render ("--state bare" + more), expected));

    const auto installed = file (".vst3/presets/Vorntaal/Tarvelline/Own Sound.vstpreset");
    ASSERT_TRUE (installed.getParentDirectory().createDirectory() && file ("x.vstpreset").moveFileTo (installed));
    EXPECT_TRUE (shell ("HOME=$PWD \"$RENDER\" --preset-list").text.contains ("Own Sound  "));
    ASSERT_EQ (shell ("HOME=$PWD \"$RENDER\" in.wav out.wav --preset 'own sound'" + more).exitCode, 0);
    EXPECT_TRUE (sameBits (read ("out.wav").channels.front(), expected));
}

// Notes handed on early, late, in the wrong tempo, or lost; an event dropped because others come at the same time.
TEST_F (RenderTest, NotesTransposeAndBlocksDoNotMatter)
{
    const auto input = sine (tone, rate, 3.0, 0.5);
    write ("in.wav", { rate, { input } });
    juce::MidiMessageSequence tempi, events;
    tempi.addEvent (juce::MidiMessage::tempoMetaEvent (250000), 0.0); // microseconds a beat
    tempi.addEvent (juce::MidiMessage::tempoMetaEvent (750000), 480.0);

    for (const auto& message : { juce::MidiMessage::noteOn (1, 67, 0.8f), juce::MidiMessage::noteOff (2, 67),
                                 juce::MidiMessage::pitchWheel (1, 16383) })
        events.addEvent (message, 960.0); // at 1 s

    juce::MidiFile midi;
    midi.setTicksPerQuarterNote (480);
    midi.addTrack (tempi);
    midi.addTrack (events);
    ASSERT_TRUE (midi.writeTo (*file ("notes.mid").createOutputStream()));
    const juce::String options = "--midi notes.mid --set mainRange=0 --set mainGravityPar=1 --block ";

    const auto output = render (options + "512");
    EXPECT_TRUE (sameBits (part (output, 0.1, 0.9), part (input, 0.1, 0.9))); // at rest: the dry signal
    EXPECT_NEAR (centsIn (output, 2.0, 2.9), hopCents (256, 161), 0.01);      // seven by the note, one by the bend

    for (const auto block : { "1", "4096" })
        EXPECT_TRUE (sameBits (render (options + block), output)) << block;

    // The same by frames instead of beats, 30 a second and 29.97.
    for (const auto& [frames, ticks] : { std::pair { 30, 3000.0 }, { 29, 2997.0 } })
    {
        for (auto* event : events)
            event->message.setTimeStamp (ticks);

        midi.clear();
        midi.setSmpteTimeFormat (frames, 100);
        midi.addTrack (events);
        file ("notes.mid").deleteFile();
        ASSERT_TRUE (midi.writeTo (*file ("notes.mid").createOutputStream()));
        EXPECT_TRUE (sameBits (render (options + "512"), output)) << frames;
    }
}

// A curve on the wrong side or scale of its axis.
TEST_F (RenderTest, PlotDrawsTheShiftThatSounds)
{
    write ("in.wav", { rate, { sine (tone, rate, 1.0, 0.5) } });
    std::vector<int> curveRows;

    for (const juce::String semitones : { "-5", "5" })
    {
        ASSERT_EQ (run ("in.wav out.wav --plot plot.png --semitones " + semitones).exitCode, 0);
        const auto image = juce::ImageFileFormat::loadFrom (file ("plot.png"));
        auto& row = curveRows.emplace_back (0);

        while (row < image.getHeight() && image.getPixelAt (image.getWidth() / 2, row) != juce::Colour (0xffff8c1a))
            ++row;
    }

    // The axes run from -6 to 1 and from -1 to 6 over the 460 rows of the spectrogram.
    EXPECT_NEAR (curveRows[0] - curveRows[1], 460.0 * 5.0 / 7.0, 1.0);
    EXPECT_EQ (filesThere().joinIntoString (" "), "in.wav out.wav plot.png");
}
} // namespace tarvelline::test
