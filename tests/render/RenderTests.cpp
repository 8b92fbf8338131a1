// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/Meters.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <numeric>
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
            const auto summary = juce::String::formatted (
                ": %.2f s, peak %.1f dBFS, latency %d samples (%.1f ms) taken out, ", (30000 + late) / hertz,
                20.0 * std::log10 (std::max (peak (noise), peak (in.channels.back()))), late, 1000.0 * late / hertz);
            EXPECT_TRUE (outcome.text.contains (summary)) << outcome.text;
            EXPECT_GT (outcome.text.fromFirstOccurrenceOf ("taken out, ", false, false).getDoubleValue(), 0.0);
            EXPECT_EQ (out.rate, hertz);

            for (auto& channel : in.channels)
                channel.resize (channel.size() + static_cast<std::size_t> (late));

            EXPECT_EQ (out.channels, in.channels) << hertz;
        }
}

// Samples of another kind or order of bytes, rounded to fewer bits than asked for, or late; fewer channels than a kind has
// room for, or more; a part that is taken for the whole, or what is missing for silence.
TEST_F (RenderTest, FilesOfEveryKindComeBackAsTheyWere)
{
    struct Kind
    {
        const char *file, *options;
        int format, channels; // the most
        double error;         // greatest
    };

    const auto noise = whiteNoise (21000); // FLAC's last block is a short one
    write ("in.aiff", { 48000.0, { sine (tone, 48000.0, 0.4375, 0.5), noise } });
    write ("loud.wav", { 48000.0, { sine (tone, 48000.0, 0.4375, 1.4), noise } });

    for (const auto& [name, options, format, channels, error] :
         { Kind { "x.flac", "--bits 24", SF_FORMAT_FLAC | SF_FORMAT_PCM_24, 8, 0.0 },
           Kind { "x.aifc", "--bits 24", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, 64, 0.0 },
           Kind { "x.wav", "--bits 32", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 64, 0.0 },
           Kind { "x.w64", "--bits 32", SF_FORMAT_W64 | SF_FORMAT_FLOAT, 64, 0.0 },
           Kind { "x.caf", "--bits 32", SF_FORMAT_CAF | SF_FORMAT_FLOAT, 64, 0.0 },
           Kind { "x.snd", "--bits 32", SF_FORMAT_AU | SF_FORMAT_FLOAT, 64, 0.0 },
           Kind { "x.ogg", "", SF_FORMAT_OGG | SF_FORMAT_VORBIS, 2, 0.02 },
           Kind { "x.opus", "", SF_FORMAT_OGG | SF_FORMAT_OPUS, 2, 0.03 },
           Kind { "x.mp3", "", SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III, 2, 0.02 } })
    {
        const juce::String made (name), in ((format & SF_FORMAT_SUBMASK) == SF_FORMAT_FLOAT ? "loud.wav" : "in.aiff");
        const auto expect = [&] (const Outcome& outcome)
        { ASSERT_EQ (outcome.exitCode, 0) << name << ": " << outcome.text; };
        expect (run (in + " " + made + " --set mixerPar=0 " + options));
        SF_INFO info {};
        sf_close (sf_open (file (made).getFullPathName().toRawUTF8(), SFM_READ, &info));
        EXPECT_EQ (info.format & ~SF_FORMAT_ENDMASK, format) << name;
        expect (run (made + " out.wav --set mixerPar=0"));
        const auto input = read (in).channels.front(), output = read ("out.wav").channels.front();
        ASSERT_EQ (output.size(), input.size() + 2 * latency) << name;

        for (std::size_t i = 2000; i < 19000; ++i)
            ASSERT_NEAR (output[i], input[i], error) << name << " at " << i;

        if (juce::String (options).startsWith ("--bits")) // as many as unless told
        {
            expect (run (in + " same-" + made + " --set mixerPar=0"));
            EXPECT_TRUE (file ("same-" + made).hasIdenticalContentTo (file (made))) << name;
            shell ("head -c -8 " + made + " > part");
            EXPECT_TRUE (run ("part out.wav").text.contains ("cut off")) << name;
        }

        shell ("head -c $(($(stat -c %s " + made + ") * 3 / 5)) " + made + " > part");
        EXPECT_TRUE (run ("part out.wav").text.contains ("cut off")) << name;

        Recording wide { 48000.0, { static_cast<std::size_t> (channels), { 0.5f, 0.5f } } };
        write ("wide.wav", wide);
        expect (run ("wide.wav " + made + " --channels pairs " + options));
        wide.channels.push_back (wide.channels.front());
        write ("wide.wav", wide);
        EXPECT_EQ (run ("wide.wav " + made + " " + options).exitCode, 2) << name;
    }
}

// What other programs write, in many encodings, some into a pipe and so without a length in the header; the name says nothing.
TEST_F (RenderTest, FilesOfOtherProgramsAreKnownByWhatTheyHold)
{
    const auto render = [&] (const juce::String& name)
    {
        EXPECT_TRUE (juce::File (TARVELLINE_READER_SEEDS).getChildFile (name).copyFileTo (file ("in.flac")));
        EXPECT_EQ (run ("in.flac out.wav --set mixerPar=0").exitCode, 0) << name;
        return read ("out.wav").channels.front();
    };
    const auto plain = render ("wav16.wav");

    for (const juce::String name : { "mono.w64", "float.aifc", "stereo.caf", "streamed.caf", "alac.caf", "mulaw.wav",
                                     "mulaw.au", "msadpcm.wav", "imaadpcm.wav" })
    {
        const auto found = render (name);
        ASSERT_GE (found.size(), plain.size()) << name;

        // Where steps adapt to the sound they have to grow first.
        for (std::size_t i = name.contains ("adpcm") ? 40 : 0; i + latency < plain.size(); ++i)
            ASSERT_NEAR (found[i], plain[i],
                         name.contains ("adpcm")   ? 0.05
                         : name.contains ("mulaw") ? 0.02
                                                   : 0.0)
                << name;
    }

    for (const auto* name :
         { "wav64.wav", "rf64.wav", "cbr.mp3", "notable.mp3", "mono.ogg", "mono.opus", "streamed.flac", "gsm.wav" })
        EXPECT_GT (render (name).size(), static_cast<std::size_t> (latency)) << name;
}

// A length that is not taken at its word, or one whose writer did not know it yet and which is.
TEST_F (RenderTest, LengthsInHeadersAreTakenAtTheirWord)
{
    struct Kind
    {
        int format;
        const char* mark;    // of what holds the length
        int distance, bytes; // of the length, from there on
        bool bigEndian;
        int counted; // besides the sound
    };
    const auto noise = whiteNoise (400);
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    using Lengths = std::vector<std::int64_t>;

    for (const auto& [format, mark, distance, bytes, bigEndian, counted] :
         { Kind { SF_FORMAT_WAV, "data", 4, 4, false, 0 },
           Kind { SF_FORMAT_WAV | SF_ENDIAN_BIG, "data", 4, 4, true, 0 },
           Kind { SF_FORMAT_RF64, "ds64", 16, 8, false, 0 }, Kind { SF_FORMAT_W64, "data", 16, 8, false, 24 },
           Kind { SF_FORMAT_AIFF, "SSND", 4, 4, true, 8 }, Kind { SF_FORMAT_CAF, "data", 4, 8, true, 4 },
           Kind { SF_FORMAT_AU, ".snd", 8, 4, true, 0 },
           Kind { SF_FORMAT_AU | SF_ENDIAN_LITTLE, "dns.", 8, 4, false, 0 } })
    {
        writeKind ("in", format | SF_FORMAT_PCM_16, { 8000.0, { noise } });
        juce::MemoryBlock whole;
        ASSERT_TRUE (file ("in").loadFileAsData (whole));
        auto* const place = whole.begin() + std::string_view (whole.begin(), whole.getSize()).find (mark) + distance;
        const auto expect = [&] (std::int64_t length, int samples, const char* mistake = "cut off")
        {
            for (int i = 0; i < bytes; ++i)
                place[bigEndian ? bytes - 1 - i : i] = static_cast<char> (length >> 8 * i);

            file ("in").replaceWithData (whole.getData(), whole.getSize());
            const auto text = run ("in out.wav --set mixerPar=0").text;
            ASSERT_EQ (text.contains (mistake), samples == 0) << mark << " " << length << text;
            auto out = read ("out.wav").channels[0];

            for (std::size_t i = 0; i < static_cast<std::size_t> (samples); ++i)
                ASSERT_NEAR (out.at (i), noise[i], 1.0f / 32768.0f) << mark << " " << length;

            EXPECT_TRUE (samples == 0 || out.size() == static_cast<std::size_t> (samples + latency)) << mark << length;
        };
        const auto told = 800 + counted;
        expect (told - 8, 396);
        expect (told + 1, 0);

        // A WAV tells its whole length as well, and then 0 is 0; in others less than what is counted is nothing that was meant.
        expect (0, distance > 4 || counted > 0 ? 400 : 0, "no samples");

        for (const auto length : bytes == 8
                                     ? Lengths { told, -1, most }
                                     : Lengths { told, 0xffffffff, 0xffff0001, 0x80000000, 0x7fff0001, 0x8000ffff })
            expect (length, 400);

        for (const auto length : bytes == 8 ? Lengths { most / 16 } : Lengths { 0xffff0000, 0x7fff0000, 0x80010000 })
            expect (length, 0);
    }
}

// A note in the file that gets lost, is changed, or that nobody wrote; a size of the whole that leaves some of it out.
TEST_F (RenderTest, NotesInTheFileAreKeptToTheByte)
{
    const auto chunksOf = [&] (const juce::File& wav, bool bigEndian)
    {
        std::map<std::string, juce::MemoryBlock> chunks;
        juce::FileInputStream in (wav);
        const auto size = [&] { return bigEndian ? in.readIntBigEndian() : in.readInt(); };
        in.setPosition (4);
        EXPECT_EQ (size(), in.getTotalLength() - 8);
        in.setPosition (12);

        while (in.getNumBytesRemaining() >= 8)
        {
            std::string name (4, ' ');
            in.read (name.data(), 4);
            const auto bytes = size();
            in.readIntoMemoryBlock (chunks[name], bytes);
            in.skipNextBytes (bytes % 2);
        }

        for (const auto* name : { "fmt ", "fact", "data", "PAD ", "COMM", "FVER", "SSND", "junk" })
            chunks.erase (name);

        return chunks;
    };
    const auto source = juce::File (TARVELLINE_READER_SEEDS).getChildFile ("notes.wav");
    ASSERT_TRUE (source.copyFileTo (file ("in.wav")));
    writeKind ("in.aif", SF_FORMAT_AIFF | SF_FORMAT_PCM_24, { 8000.0, { whiteNoise (34) } });

    {
        juce::FileOutputStream more (file ("in.aif"));
        more.write ("NAME\0\0\0\3Odd\0junk\0\0\0\2xxAPPL\0\0\0\4Even", 34);
        const auto size = more.getPosition();
        more.setPosition (4);
        more.writeIntBigEndian (static_cast<int> (size) - 8);
    }

    for (const auto& [in, out, count] :
         { std::tuple { "in.wav", "out.wav", 6u }, { "in.wav", "out.wav --bits 16", 6u }, { "in.aif", "out.aif", 2u } })
    {
        const juce::String name (out);
        const auto expected = chunksOf (file (in), count == 2);
        ASSERT_EQ (expected.size(), count);
        ASSERT_EQ (run (juce::String (in) + " " + name).exitCode, 0);
        EXPECT_EQ (chunksOf (file (name.upToFirstOccurrenceOf (" ", false, false)), count == 2), expected) << out;
    }

    // Into another kind go the texts that both have, but not the program that wrote it.
    ASSERT_EQ (run ("in.wav out.flac").exitCode, 0);
    EXPECT_EQ (shell ("grep -aoiE '(title|artist|comment|software|encoder)=[a-z]+' out.flac | sort").text.toLowerCase(),
               "artist=two\ncomment=c\ntitle=odd\n");
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
}

// Vorbis has its channels in an order of its own. Here they are named by their bits in a WAV's mask, whose order is WAV's; the
// bit's place is the tone.
TEST_F (RenderTest, SurroundIsPutIntoTheOrderOfWavAndSaysSo)
{
    constexpr int L = 1, R = 2, C = 4, Lfe = 8, Rl = 16, Rr = 32, Rc = 256, Sl = 512, Sr = 1024;
    const auto hertz = [] (int place) { return place == Lfe ? 60.0 : 180.0 + 120.0 * std::log2 (place); };

    for (std::vector<int> places : { std::vector { L, C, R },
                                     { L, R, Rl, Rr },
                                     { L, C, R, Rl, Rr },
                                     { L, C, R, Rl, Rr, Lfe },
                                     { L, C, R, Sl, Sr, Rc, Lfe },
                                     { L, C, R, Sl, Sr, Rl, Rr, Lfe } })
    {
        Recording in { 48000.0, {} };

        for (const auto place : places)
            in.channels.push_back (sine (hertz (place), 48000.0, 0.5, 0.5));

        writeKind ("in.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS, in);
        ASSERT_EQ (run ("in.ogg x.flac --set mixerPar=0").exitCode, 0); // in WAV's order, but untold
        ASSERT_EQ (run ("x.flac out.wav --set mixerPar=0").exitCode, 0);
        const auto channels = read ("out.wav").channels;
        ASSERT_EQ (channels.size(), places.size());
        std::sort (places.begin(), places.end());

        for (std::size_t i = 0; i < places.size(); ++i)
            EXPECT_NEAR (frequencyHz ({ channels[i].begin() + 4800, channels[i].begin() + 19200 }, 48000.0),
                         hertz (places[i]), 5.0)
                << i << " of " << places.size();

        juce::FileInputStream header (file ("out.wav"));
        header.setPosition (40);
        EXPECT_EQ (header.readInt(), std::accumulate (places.begin(), places.end(), 0)) << places.size();
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

    for (auto sample = output.begin(); sample < output.begin() + 100000; ++sample)
    {
        sum += *sample / step - 7.3;
        squares += std::pow (*sample / step - 7.3, 2);
    }

    EXPECT_NEAR (sum / 100000, 0.0, 0.01);            // measured: 0.001 steps
    EXPECT_NEAR (squares / 100000, 3.0 / 12.0, 0.01); // rounding and two dice, a twelfth each
}

// Samples that come back from the other side, or that clip without a word; events that nobody hears of. The end is after
// 4000 samples, and twice the latency.
TEST_F (RenderTest, NotesTellWhatIsLost)
{
    write ("in.wav", { 8000.0, { sine (100.0, 8000.0, 0.5, 2.0) } });
    file ("moves.csv").replaceWithText ("1.011875,mixerPar,0\n1.012,mixerPar,0\n1.5,mixerPar,0\n");

    for (const auto& [bits, least, most] : { std::tuple { 16, -32768.0 / 32768.0, 32767.0 / 32768.0 },
                                             { 24, -1.0, 8388607.0 / 8388608.0 },
                                             { 32, -2.0, 2.0 } })
    {
        const auto text =
            run ("in.wav out.wav --set mixerPar=0 --automate moves.csv --bits " + juce::String (bits)).text;
        const auto out = read ("out.wav").channels[0];
        const auto [low, high] = std::minmax_element (out.begin(), out.end());
        EXPECT_NEAR (*low, least, 1.0e-9) << bits;
        EXPECT_NEAR (*high, most, 1.0e-9) << bits;
        EXPECT_EQ (text.contains ("note: 6.0 dB too loud for " + juce::String (bits) + " bits"), bits < 32) << text;
        EXPECT_TRUE (text.contains ("note: 2 events come after the end")) << text;
    }
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

// A line that begins or ends elsewhere, jumps, or depends on the blocks; a change that comes at another sample than its own.
// Voices without notes are silent, so that the mixer alone is heard.
TEST_F (RenderTest, AutomationMovesInStraightLinesAndComesAtItsSample)
{
    write ("in.wav", { rate, { Samples (30000, 1.0f) } });
    file ("fade.csv")
        .replaceWithText (
            "seconds, parameterId,value,shape\r\n\n # a fade\n0.4,mixerPar,1,line\n0.6, mixerPar, 0 # and "
            "back\n0.2,mixerPar,0\n");
    const juce::String options = "--set midiOptions=0 --set mixerPar=0 --automate fade.csv --block ";
    const auto output = render (options + "512");

    for (std::size_t i = 0; i + latency < 30000; ++i)
        ASSERT_NEAR (output[i],
                     i + latency < 26460 ? std::clamp (2.0 - static_cast<double> (i + latency) / 8820.0, 0.0, 1.0)
                                         : 1.0,
                     33.0 / 8820.0)
            << i;

    for (const auto block : { "1", "77", "8192" })
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

    // The largest file that is read, and one beyond.
    ASSERT_EQ (shell ("cp x.vstpreset large; truncate -s 1M large").exitCode, 0);
    EXPECT_TRUE (sameBits (render ("--state large" + more), expected));
    EXPECT_EQ (shell ("truncate -s +1 large; exec \"$RENDER\" in.wav out.wav --state large").exitCode, 2);

    // The bare block that a host is handed lies in the file, from its 49th byte on.
    ASSERT_EQ (shell ("tail -c +49 x.vstpreset > bare").exitCode, 0);
    EXPECT_TRUE (sameBits (render ("--state bare" + more), expected));

    // Another part's entry before the processor's in the list.
    juce::MemoryBlock turned;
    ASSERT_TRUE (file ("x.vstpreset").loadFileAsData (turned));
    auto* const entries = turned.begin() + std::string_view (turned.begin(), turned.getSize()).rfind ("List") + 8;
    std::swap_ranges (entries, entries + 20, entries + 20);
    file ("turned").replaceWithData (turned.getData(), turned.getSize());
    EXPECT_TRUE (sameBits (render ("--state turned" + more), expected));

    const auto installed = file (".vst3/presets/Vorntaal/Tarvelline/Own Sound.vstpreset");
    ASSERT_TRUE (installed.getParentDirectory().createDirectory() && file ("x.vstpreset").copyFileTo (installed)
                 && file ("x.vstpreset").moveFileTo (installed.getSiblingFile ("Own Beat.vstpreset")));
    const auto list = shell ("HOME=$PWD \"$RENDER\" --preset-list").text;
    EXPECT_TRUE (list.fromFirstOccurrenceOf ("Own Beat                  /", false, false).contains ("\nOwn Sound  "))
        << list;
    ASSERT_EQ (shell ("HOME=$PWD \"$RENDER\" in.wav out.wav --preset 'own sound'" + more).exitCode, 0);
    EXPECT_TRUE (sameBits (read ("out.wav").channels.front(), expected));
}

// Notes handed on early, late, in the wrong tempo, or lost; an event dropped because others come at the same time.
TEST_F (RenderTest, NotesTransposeAndBlocksDoNotMatter)
{
    const auto input = sine (tone, rate, 4.0, 0.5);
    write ("in.wav", { rate, { input } });
    juce::MidiMessageSequence tempi;
    tempi.addEvent (juce::MidiMessage::tempoMetaEvent (250000), 0.0); // microseconds a beat
    tempi.addEvent (juce::MidiMessage::tempoMetaEvent (750000), 480.0);
    const juce::String options = "--midi notes.mid --set mainRange=0 --set mainGravityPar=1 --block ";
    Samples first;

    // At 1 s: by beats, and by frames, 30 a second and 29.97.
    for (const auto& [frames, ticks] : { std::pair { 0, 960.0 }, { 30, 3000.0 }, { 29, 2997.0 } })
    {
        juce::MidiMessageSequence events;

        for (const auto& message : { juce::MidiMessage::noteOn (1, 67, 0.8f), juce::MidiMessage::noteOff (2, 67),
                                     juce::MidiMessage::pitchWheel (1, 16383) })
            events.addEvent (message, ticks);

        events.addEvent (juce::MidiMessage::pitchWheel (1, 4000), frames > 0 ? 3 * ticks : 2240.0); // at 3 s, alone

        juce::MidiFile midi;
        frames > 0 ? midi.setSmpteTimeFormat (frames, 100) : midi.setTicksPerQuarterNote (480);
        midi.addTrack (frames > 0 ? juce::MidiMessageSequence() : tempi);
        midi.addTrack (events);
        file ("notes.mid").deleteFile();
        ASSERT_TRUE (midi.writeTo (*file ("notes.mid").createOutputStream()));

        for (const auto block : { "512", "1", "4096" })
        {
            const auto output = render (options + block);
            first = first.empty() ? output : first;
            EXPECT_TRUE (sameBits (output, first)) << frames << " " << block;
        }
    }

    EXPECT_TRUE (sameBits (part (first, 0.1, 0.9), part (input, 0.1, 0.9))); // at rest: the dry signal
    EXPECT_NEAR (centsIn (first, 2.0, 2.9), hopCents (256, 161), 0.01);      // seven by the note, one by the bend
}
} // namespace tarvelline::test
