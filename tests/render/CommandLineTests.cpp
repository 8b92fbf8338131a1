// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"
#include "tests/support/Meters.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <pty.h>
#include <set>
#include <string>
#include <unistd.h>

namespace tarvelline::test
{
namespace
{
constexpr double rate = 44100.0;
constexpr std::size_t latency = 2048; // at 44.1 kHz

/** The options in the lines of a text that begin so, where it explains them: up to a second cell of a table. */
std::set<juce::String> optionsIn (const juce::String& text, const char* beginning)
{
    std::set<juce::String> found;

    for (const auto& line : juce::StringArray::fromLines (text))
        if (line.startsWith (beginning))
            for (const auto& word : juce::StringArray::fromTokens (
                     line.substring (1).upToFirstOccurrenceOf ("|", false, false), " `,=", {}))
                if (word.length() > 1 && word.startsWith ("-") && ! word.containsAnyOf ("0123456789"))
                    found.insert (word);

    return found;
}

std::size_t firstDifference (const Samples& a, const Samples& b)
{
    return static_cast<std::size_t> (std::mismatch (a.begin(), a.end(), b.begin(), b.end()).first - a.begin());
}
} // namespace

class CommandLineTest : public RenderTest
{
protected:
    Samples moved (const char* table, const juce::String& options = {})
    {
        file ("moves.csv").replaceWithText (table);
        return render (options + " --automate moves.csv");
    }

    static juce::MidiMessage on (int note) { return juce::MidiMessage::noteOn (1, note, 0.8f); }
    static juce::MidiMessage off (int note) { return juce::MidiMessage::noteOff (1, note); }
};

// An option that one of the three forgets, or still has; a wrong figure, or columns that do not line up.
TEST_F (CommandLineTest, HelpManPageAndDocumentExplainTheSameOptions)
{
    const juce::File docs { TARVELLINE_DOCS };
    const auto page = docs.getChildFile ("tarvelline-render.1").loadFileAsString().replace ("\\-", "-");
    const auto help = run ("--help").text.removeCharacters ("\r");
    EXPECT_TRUE (help.contains ("\n  -q, --quiet         prints")
                 && help.contains ("\n                      it comes"));
    EXPECT_TRUE (help.contains ("\n\nFiles:\n") && help.contains ("\n  midiOptions     Toggle MIDI     1.0  notes"));
    EXPECT_TRUE (help.containsOnly (help.removeCharacters ("\1\2\3"))) << help;
    EXPECT_EQ (
        (help.upToFirstOccurrenceOf ("Sound:", false, false) + help.fromFirstOccurrenceOf ("Examples:", false, false))
            .retainCharacters ("0123456789"),
        "643164838450447243050606050505050010050505050010100001002461224480020406081114281600012130");
    const auto expected = optionsIn (help, "  -");
    EXPECT_GT (expected.size(), 20u);
    EXPECT_EQ (optionsIn (page.replace (".TP\n.B", ".TP .B"), ".TP .B"), expected);
    EXPECT_EQ (optionsIn (docs.getChildFile ("rendering.md").loadFileAsString(), "| `-"), expected);
}

// A prefix taken for another option, a name of a file taken for one, or a value for a file.
TEST_F (CommandLineTest, OptionsAreReadAsOtherProgramsReadThem)
{
    write ("in.wav", { rate, { whiteNoise (5000) } });
    write ("-x.wav", { rate, { whiteNoise (5000, noiseSeed + 1) } });
    const auto expected = render ("--semitones -3 --block 77");
    EXPECT_EQ (run ("--semi -3 in.wav --bl=77 other.wav -q").text, "");
    EXPECT_TRUE (sameBits (read ("other.wav").channels[0], expected));
    EXPECT_EQ (run ("--semi=+24 --formant -24 --block 65536 --jobs 256 -- -x.wav --y.wav").exitCode, 0);
    EXPECT_TRUE (file ("--y.wav").existsAsFile());
    EXPECT_TRUE (run ("in.wav out.wav -v --set toggleSize=1").text.contains ("toggleSize=1"));
    EXPECT_TRUE (run ("in.wav other.wav --no-clobber --semitones 9").text.contains ("stays as it is"));
    EXPECT_TRUE (sameBits (read ("other.wav").channels[0], expected));
}

// A shift on the wrong wheel, side or range; formants that go along although they are to stay.
TEST_F (CommandLineTest, SemitonesAreTheWheelsPositions)
{
    write ("in.wav", { rate, { material (40000) } });
    const auto kept = render ("--semitones 4 --set toggleSize=1");
    EXPECT_TRUE (sameBits (render ("--semitones 4 --keep-formants"), kept));
    EXPECT_FALSE (sameBits (render ("--semitones 4"), kept));
    EXPECT_TRUE (
        sameBits (render ("--formant -3"), render ("--set toggleSize=1 --set timbRange=0.4 --set timbWheelPar=0")));
    EXPECT_TRUE (sameBits (moved ("0.1,pitch,3\n0.4,pitch,-6,line\n"),
                           moved ("0.1,mainWheelPar,0.75\n0.4,mainWheelPar,0,line\n")));
    EXPECT_TRUE (sameBits (moved ("0.1,pitch,-9\n0.2,timbre,3\n", "--semitones 1.5"),
                           moved ("0.1,mainWheelPar,0.125\n0.2,timbWheelPar,0.75\n",
                                  "--set toggleSize=1 --set mainRange=0.8 --set mainWheelPar=0.5625")));
}

// An event that acts earlier or later than it says; a setting at 0 that the beginning goes without.
TEST_F (CommandLineTest, AlignedEventsActOnTheOutputFromTheirTime)
{
    const auto noise = whiteNoise (60000);
    write ("in.wav", { rate, { noise } });
    const auto steady = render ("--semitones 2"), jumped = moved ("0.6,pitch,5\n", "--semitones 2 --align sound");
    const auto asInHosts = moved ("0.6,pitch,5\n", "--semitones 2");
    constexpr double stirs = 474.0; // measured, in samples: the wheel's weight, until the shift is another whole hop
    EXPECT_NEAR (static_cast<double> (firstDifference (steady, jumped)), 26460.0 + stirs, 10.0);
    EXPECT_NEAR (static_cast<double> (firstDifference (steady, asInHosts)), 26460.0 - latency + stirs, 10.0);

    const auto dry = moved ("0,mixerPar,0\n0.6,mixerPar,1\n", "--semitones 2 --align sound");
    EXPECT_EQ (firstDifference (dry, noise), 26460u);
    const auto faded = moved ("0,mixerPar,0\n0.1,mixerPar,0\n0.6,mixerPar,1,line\n", "--semitones 2 --align sound");
    EXPECT_EQ (firstDifference (faded, noise), 4410u + 32u) << "a line's first step";

    // A note that transposes is such an event; with a setting of 0 as well. Of events at one time each has a sample of its own.
    std::vector<std::pair<int, juce::MidiMessage>> events (200, { 600, off (3) });
    events.push_back ({ 600, on (67) });
    writeMidi (events);
    const auto played = render ("--semitones 2 --set timbSmoothPar=0 --align sound --midi notes.mid");
    EXPECT_NEAR (static_cast<double> (firstDifference (steady, played)), 26460.0 + 200.0 + stirs, 30.0);
}

// A voice that ends early, or that keeps its key so long that the next note is lost.
TEST_F (CommandLineTest, AlignedVoicesSoundFromTheirNotesBeginningToItsEnd)
{
    write ("in.wav", { rate, { sine (440.0, rate, 1.6, 0.5) } });
    const juce::String options = "--midi notes.mid --set midiOptions=0 --align sound";
    writeMidi ({ { 300, on (67) } });
    const auto held = render (options);
    writeMidi ({ { 300, on (67) }, { 700, off (67) }, { 780, on (67) }, { 1000, off (67) } });
    const auto played = render (options);
    const auto highest = [&] (double from, double to)
    {
        return peak (Signal (played).subspan (static_cast<std::size_t> (from * rate),
                                              static_cast<std::size_t> ((to - from) * rate)));
    };

    EXPECT_EQ (highest (0.0, 0.2999), 0.0f);
    EXPECT_NEAR (static_cast<double> (firstDifference (held, played)), (0.78 - 1.0 / 15.0) * rate - latency, 5.0);
    EXPECT_GT (highest (0.9, 1.0), 0.1f);
    EXPECT_EQ (highest (1.068, 1.6), 0.0f);
    EXPECT_GT (highest (1.0, 1.03), 0.1f);
}

// Two takes of one name that become one file, one written over one that is yet to be read, or a folder that is not made.
TEST_F (CommandLineTest, FoldersAreKept)
{
    for (const auto name : { "takes/a/My take.wav", "takes/b/My take.wav" })
    {
        file (name).getParentDirectory().createDirectory();
        write (name, { rate, { whiteNoise (1000) } });
    }

    ASSERT_EQ (run ("takes/*/*.wav --out-dir made --keep-folders").exitCode, 0);
    EXPECT_TRUE (file ("made/takes/a/My take.wav").existsAsFile() && file ("made/takes/b/My take.wav").existsAsFile());
    file ("takes/a/My take.wav").copyFileTo (file ("-b(&) c_1.wav"));
    file ("takes/a/My take.wav").copyFileTo (file ("(&).wav"));
    ASSERT_EQ (run ("--out-dir flat -- -b* '(&).wav'").exitCode, 0);
    EXPECT_TRUE (file ("flat/b-c_1.wav").existsAsFile() && file ("flat/recording.wav").existsAsFile());
    EXPECT_TRUE (
        run ("'takes/a/My take.wav' made/takes/b/*.wav --keep-folders --out-dir .").text.contains ("also read"));
}

// A process that another one's end takes along, or that is told as done; one that is not found when the shell found ours; a
// line of progress that is wrong, or stays. The process in the middle is held until the terminal has been told.
TEST_F (CommandLineTest, ProgressAndTheCrashOfOneRunAreTold)
{
    int terminal = -1, side = -1;
    ASSERT_EQ (openpty (&terminal, &side, nullptr, nullptr, nullptr), 0);
    write ("in.wav", { rate, { whiteNoise (1000) } });
    file ("in.wav").copyFileTo (file ("last.wav"));
    write ("long.wav", { 192000.0, { whiteNoise (4000000) } });
    const auto outcome = shell (
        "PATH=$PATH:${RENDER%/*}; tarvelline-render in.wav long.wav last.wav --out-dir made --block 16 2>"
        + juce::String (ttyname (side))
        + " & for i in $(seq 200); do sleep 0.02; [ ! -e made/in.wav ] || break; done; for i in $(seq 200); do"
          " sleep 0.02; for c in $(cat /proc/$!/task/*/children); do ! grep -q long.wav /proc/$c/cmdline || break 2;"
          " done; done; kill -STOP $c; sleep 1.3; kill -KILL $c; wait $!");
    std::string told (4000, ' ');
    told.resize (static_cast<std::size_t> (std::max<ssize_t> (0, ::read (terminal, told.data(), told.size()))));
    close (side);
    close (terminal);
    EXPECT_EQ (outcome.exitCode, 1);
    EXPECT_NE (told.find ("\r 33 %\r"), std::string::npos) << told;
    EXPECT_NE (told.find ("%\r     \rlong.wav  crashed (signal 9)"), std::string::npos) << told;
    EXPECT_NE (told.find ("2 of 3 files written"), std::string::npos) << told;
    EXPECT_TRUE (outcome.text.contains ("in.wav    written")) << outcome.text;
    EXPECT_TRUE (file ("made/last.wav").existsAsFile());
}

// Files that get the numbers of closed streams, and with them the words that are printed; one that others may read.
TEST_F (CommandLineTest, StreamsMayBeClosedAndTheUmaskIsKept)
{
    write ("in.wav", { rate, { whiteNoise (30000) } });
    const auto expected = render ("--semitones 3");
    file ("out.wav").deleteFile();
    const auto outcome = shell ("umask 027; \"$RENDER\" in.wav out.wav --semitones 3 <&- >&- 2>&-; stat -c %a out.wav");
    EXPECT_EQ (outcome.text.trim(), "640");
    EXPECT_TRUE (sameBits (read ("out.wav").channels[0], expected));
}

// A window system that is asked for although nothing is shown: one that does not answer would hold the program for ever.
TEST_F (CommandLineTest, DisplayIsLeftAlone)
{
    juce::StreamingSocket deaf;
    int display = 100;

    while (display < 200 && ! deaf.createListener (6000 + display, "127.0.0.1"))
        ++display;

    write ("in.wav", { rate, { whiteNoise (1000) } });
    const juce::String name ("DISPLAY=127.0.0.1:" + juce::String (display));
    EXPECT_EQ (shell (name + " timeout 20 \"$RENDER\" in.wav out.wav").exitCode, 0);
}
} // namespace tarvelline::test
