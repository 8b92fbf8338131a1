// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/Meters.h"

#include <algorithm>
#include <cmath>
#include <map>
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

// Samples of another kind or order of bytes, rounded to fewer bits than asked for, or late.
TEST_F (RenderTest, FilesOfEveryKindComeBackAsTheyWere)
{
    struct Kind
    {
        const char *file, *options;
        double error; // greatest
    };

    write ("in.aiff", { 48000.0, { sine (tone, 48000.0, 0.5, 0.5), whiteNoise (24000) } });
    const auto input = read ("in.aiff").channels.front();

    for (const auto& [name, options, error] : { Kind { "x.flac", "", 0.0 },
                                                { "x.aif", "", 0.0 },
                                                { "x.wav", "--bits 24", 0.0 },
                                                { "x.w64", "", 0.0 },
                                                { "x.caf", "", 0.0 },
                                                { "x.au", "", 0.0 },
                                                { "x.snd", "--bits 24", 0.0 },
                                                { "x.aifc", "--bits 32", 0.0 },
                                                { "x", "--format flac", 0.0 },
                                                { "x.ogg", "", 0.02 },
                                                { "x.opus", "", 0.03 },
                                                { "x.mp3", "", 0.02 } })
    {
        const juce::String file (name);
        auto outcome = run ("in.aiff " + file + " --set mixerPar=0 " + options);
        ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
        outcome = run (file + " out.wav --set mixerPar=0");
        ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
        const auto output = read ("out.wav").channels.front();
        ASSERT_EQ (output.size(), input.size() + 2 * latency) << name;

        for (std::size_t i = 2000; i < 22000; ++i)
            ASSERT_NEAR (output[i], input[i], error) << name << " at " << i;
    }
}

// What other programs write, in many encodings, some into a pipe and so without a length in the header; the name says nothing.
TEST_F (RenderTest, FilesOfOtherProgramsAreKnownByWhatTheyHold)
{
    struct Found
    {
        const char* file;
        double error; // greatest
    };

    const juce::File seeds (TARVELLINE_READER_SEEDS);
    const auto render = [&] (const char* name)
    {
        EXPECT_TRUE (seeds.getChildFile (name).copyFileTo (file ("in.flac")));
        const auto outcome = run ("in.flac out.wav --set mixerPar=0");
        EXPECT_EQ (outcome.exitCode, 0) << name << ": " << outcome.text;
        return read ("out.wav").channels.front();
    };
    const auto plain = render ("wav16.wav");

    for (const auto& [name, error] : { Found { "streamed.wav", 0.0 },
                                       { "mono.w64", 0.0 },
                                       { "streamed.w64", 0.0 },
                                       { "float.aifc", 0.0 },
                                       { "stereo.caf", 0.0 },
                                       { "streamed.caf", 0.0 },
                                       { "alac.caf", 0.0 },
                                       { "streamed.au", 0.0 },
                                       { "mulaw.wav", 0.02 },
                                       { "mulaw.au", 0.02 },
                                       { "msadpcm.wav", 0.05 },
                                       { "imaadpcm.wav", 0.05 } })
    {
        const auto found = render (name);
        ASSERT_GE (found.size(), plain.size()) << name;

        // Where steps adapt to the sound they have to grow first.
        for (std::size_t i = error > 0.0 ? 40 : 0; i + latency < plain.size(); ++i)
            ASSERT_NEAR (found[i], plain[i], error) << name << " at " << i;
    }

    for (const auto* name :
         { "wav64.wav", "rf64.wav", "cbr.mp3", "notable.mp3", "mono.ogg", "mono.opus", "streamed.flac", "gsm.wav" })
        EXPECT_GT (render (name).size(), static_cast<std::size_t> (latency)) << name;
}

// A note in the file that gets lost, is changed, or that nobody wrote.
TEST_F (RenderTest, NotesInTheFileAreKeptToTheByte)
{
    const auto chunksOf = [&] (const juce::File& wav)
    {
        std::map<std::string, juce::MemoryBlock> chunks;
        juce::FileInputStream in (wav);
        in.setPosition (12);

        while (in.getNumBytesRemaining() >= 8)
        {
            std::string name (4, ' ');
            in.read (name.data(), 4);
            const auto size = in.readInt();
            in.readIntoMemoryBlock (chunks[name], size);
            in.skipNextBytes (size % 2);
        }

        for (const auto* name : { "fmt ", "fact", "data", "PAD " })
            chunks.erase (name);

        return chunks;
    };
    const auto source = juce::File (TARVELLINE_READER_SEEDS).getChildFile ("notes.wav");
    const auto expected = chunksOf (source);
    ASSERT_EQ (expected.size(), 6u);
    ASSERT_TRUE (source.copyFileTo (file ("in.wav")));

    for (const auto* options : { "", "--bits 16" })
    {
        render (options);
        EXPECT_EQ (chunksOf (file ("out.wav")), expected) << options;
    }
}

// Channels swapped, shared with a neighbour that is not their twin, or left out.
TEST_F (RenderTest, ManyChannelsAreRenderedInTheirPairs)
{
    Recording in { rate, {} };

    for (unsigned int i = 0; i < 6; ++i)
        in.channels.push_back (whiteNoise (10000, noiseSeed + i));

    write ("surround.wav", in);

    using Groups = std::vector<std::vector<std::size_t>>;
    const Groups surround { { 0, 1 }, { 2 }, { 3 }, { 4, 5 } }, pairs { { 0, 1 }, { 2, 3 }, { 4, 5 } };

    for (const auto& [options, groups] : { std::pair<const char*, Groups> { "", surround },
                                           { "--channels pairs", pairs },
                                           { "--channels single", { { 0 }, { 1 }, { 2 }, { 3 }, { 4 }, { 5 } } } })
    {
        const auto outcome = run ("surround.wav made.wav --semitones 3 " + juce::String (options));
        ASSERT_EQ (outcome.exitCode, 0) << outcome.text;
        const auto made = read ("made.wav").channels;
        ASSERT_EQ (made.size(), 6u);

        for (const auto& group : groups)
        {
            Recording part { rate, {} };

            for (const auto channel : group)
                part.channels.push_back (in.channels[channel]);

            write ("part.wav", part);
            ASSERT_EQ (run ("part.wav alone.wav --semitones 3").exitCode, 0);

            for (std::size_t i = 0; i < group.size(); ++i)
                EXPECT_TRUE (sameBits (made[group[i]], read ("alone.wav").channels[i])) << options << " " << group[i];
        }
    }

    // FLAC has the six in WAV's order, but does not say so.
    for (const juce::String kind : { "wav", "flac" })
        EXPECT_EQ (run ("surround.wav x." + kind + " --set mixerPar=0 --bits 24").exitCode
                       + run ("x." + kind + " from-" + kind + ".wav --semitones 3").exitCode,
                   0);

    EXPECT_EQ (read ("from-flac.wav").channels, read ("from-wav.wav").channels);
}

// Opus and Vorbis have the centre before the right channel and the low one last. Its tones are 200, 300, ... 700 Hz in WAV's
// order.
TEST_F (RenderTest, SurroundIsPutIntoTheOrderOfWav)
{
    juce::File (TARVELLINE_READER_SEEDS).getChildFile ("surround.opus").copyFileTo (file ("in.opus"));
    ASSERT_EQ (run ("in.opus out.wav --set mixerPar=0").exitCode, 0);
    const auto channels = read ("out.wav").channels;
    ASSERT_EQ (channels.size(), 6u);

    for (std::size_t i = 0; i < channels.size(); ++i)
        if (i != 3) // from a low channel the codec takes all but the lowest frequencies
        {
            EXPECT_NEAR (frequencyHz ({ channels[i].begin() + 1200, channels[i].begin() + 3600 }, 48000.0),
                         200.0 + 100.0 * static_cast<double> (i), 10.0)
                << i;
        }
}

// Words among the sound, or a sound that is not that of a file.
TEST_F (RenderTest, PipesCarryWhatFilesDo)
{
    write ("in.wav", { rate, { whiteNoise (30000) } });
    const auto expected = render ("--semitones 3");
    const auto outcome = shell ("cat in.wav | \"$RENDER\" - - --semitones 3 2>words >piped.wav && cat words &&"
                                " \"$RENDER\" - - --format flac --semitones 3 <in.wav 2>words | head -c 4");
    EXPECT_TRUE (outcome.text.contains ("standard output: ") && outcome.text.endsWith ("fLaC")) << outcome.text;
    EXPECT_TRUE (sameBits (read ("piped.wav").channels.front(), expected));
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
} // namespace tarvelline::test
