// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"

#include <string>

namespace tarvelline::test
{
namespace
{
using namespace std::string_literals;

struct Mistake
{
    const char* arguments;
    const char* culprit;  // what the message must name
    const char* accepted; // and what it must offer
};

const Mistake mistakes[] = {
    { "", "IN and OUT", "--help" },
    { "in.wav", "name two files, IN and OUT", "--help" },
    { "in.wav out.wav fast.wav", "fast.wav is too many", "--out-dir" },
    { "--out-dir made", "at least one file", "--help" },
    { "- --out-dir made", "standard input", "leave out --out-dir" },
    { "in.wav out.wav --keep-folders", "--keep-folders", "--out-dir" },
    { "in.wav out.wav --quiet --verbose", "--quiet", "one of the two" },
    { "in.wav out.wav --preset x --state y", "--preset", "one of the two" },
    { "in.wav out.wav --loud", "--loud", "--help" },
    { "in.wav out.wav --set mixer=0.5", "\"mixer\"", "mixerPar" },
    { "in.wav out.wav --set mixerPar=nan", "nan", "0 to 1" },
    { "in.wav out.wav --set mixerPar=0.5x", "0.5x", "0 to 1" },
    { "in.wav out.wav --set mixerPar=-0.05", "-0.05", "0 to 1" },
    { "in.wav out.wav --set mixerPar=1.05", "1.05", "0 to 1" },
    { "in.wav out.wav --set mixerPar", "--set mixerPar", "parameterId=value" },
    { "in.wav out.wav --s 3", "--s ", "--semitones or --set" },
    { "in.wav out.wav --quiet=yes", "--quiet", "leave out =yes" },
    { "in.wav out.wav --bits", "--bits", "16|24|32" },
    { "in.wav out.wav --block=", "--block", "needs a value, N" },
    { "in.wav out.wav --bits 20", "--bits 20", "16 or 24" },
    { "in.wav out.wav --align now", "--align now", "sound" },
    { "in.wav -x.wav", "-x", "after --" },
    { "in.wav out.wav --formant 3 --set timbRange=1", "timbRange", "leave out" },
    { "in.wav out.wav --keep-formants --set timbWheelPar=1", "timbWheelPar", "leave out" },
    { "in.wav out.wav --automate far.csv", "far.csv, line 1", "-24 to +24" },
    { "in.wav out.wav --automate early.csv", "early.csv, line 2", "0 or more" },
    { "in.wav out.wav --automate long.csv", "line 1: \"0.5,mixerPar,1,bend\"", "seconds,parameterId,value" },
    { "in.wav out.wav --automate both.csv", "\"pitch\"", "leave out" },
    { "in.wav out.wav --semitones 24.5", "24.5", "-24 to +24; the widest range" },
    { "in.wav out.wav --block 0", "--block 0", "1 to 65536" },
    { "in.wav out.wav --block 65537", "--block 65537", "1 to 65536" },
    { "in.wav out.wav --block 1.5", "--block 1.5", "whole number" },
    { "in.wav out.wav --jobs 257", "--jobs 257", "1 to 256" },
    { "gone.wav out.wav", "gone.wav", "there is no file" },
    { "notes.csv out.wav", "notes.csv", "give WAV, W64" },
    { ". out.wav", "is a folder", "files in it" },
    { "/dev/zero out.wav", "/dev/zero", "give -" },
    { "- out.wav </dev/null", "standard input", "give WAV, W64" },
    { "slow.wav out.wav", "7999 Hz", "8000 to 384000" },
    { "quick.wav out.wav", "384001 Hz", "8000 to 384000" },
    { "crowd.wav out.wav", "65 channels", "64" },
    { "empty.wav out.wav", "empty.wav", "no samples" },
    { "guessed.mp3 out.wav", "varying bit rate", "convert it to WAV" },
    { "huge.wav out.aiff", "an AIFF file", "4 GiB" },
    { "cut.wav out.wav", "cut.wav", "cut off" },
    { "in.wav in.wav", "in.wav", "another file" },
    { "in.wav link.wav", "in.wav", "another file" },
    { "in.wav hard.wav", "hard.wav", "another file" },
    { "in.wav out.wav --plot hardout.wav", "hardout.wav", "another file" },
    { "in.wav gone/out.wav", "gone", "there is no folder" },
    { "in.wav /dev/null --format wav", "/dev/null", "not a file" },
    { "in.wav out.wav --plot out.wav", "out.wav", "another file" },
    { "in.wav out.wav --midi notes.csv", "notes.csv", "standard MIDI file" },
    { "in.wav out.wav --automate gone.csv", "gone.csv", "cannot read" },
    { "in.wav out.wav --automate notes.csv", "notes.csv, line 3", "seconds,parameterId,value" },
    { "in.wav out.wav --automate bare.csv", "mixerPar to 0.5 s", "begins nowhere" },
    { "in.wav out.wav --midi patterns.mid", "patterns.mid", "type 0 or 1" },
    { "in.wav out.wav --midi beatless.mid", "beatless.mid", "standard MIDI file" },
    { "in.wav out.wav --midi tickless.mid", "tickless.mid", "standard MIDI file" },
    { "in.wav out.wav --midi cut.mid", "cut.mid", "standard MIDI file" },
    { "in.wav out.wav --midi gone.mid", "gone.mid", "cannot read" },
    { "in.wav out.wav --state gone.vstpreset", "gone.vstpreset", "cannot read" },
    { "in.wav out.wav --state notes.csv", "notes.csv", ".vstpreset" },
    { "in.wav out.wav --state cut.vstpreset", "cut.vstpreset", ".vstpreset" },
    { "in.wav out.wav --state none.vstpreset", "none.vstpreset", ".vstpreset" }, // whose list has no entry
    { "in.wav out.wav --preset nothing", "\"nothing\"", "--preset-list" },
    { "in.wav out.xyz", "out.xyz", ".flac" },
    { "in.wav out.flac --format wav", "--format wav", "leave one" },
    { "in.wav out.wav --format wave", "--format wave", "wav, w64, aiff, caf, au, flac, ogg, opus, mp3" },
    { "in.wav out.flac --bits 32", "--bits 32", "16 or 24" },
    { "in.wav out.ogg --bits 16", "--bits 16", "leave it out" },
    { "in.wav out.opus", "44100 Hz", "48000" },
    { "fast.wav out.mp3", "96000 Hz", "48000" },
    { "many.wav out.flac", "9 channels", "8 at most" },
    { "in.wav out.wav --channels all", "--channels all", "pairs or single" },
    { "wrong.flac out.wav", "wrong.flac", "damaged" },
    { "in.wav out.wav --save-state out.wav", "out.wav", "another file" },
    { "in.wav cut.wav --out-dir . --plot plot.png", "--plot", "one IN" },
    { "in.wav cut.wav --out-dir . --save-state x", "--save-state", "one IN" },
    { "in.wav fast.wav --out-dir linked", "linked/in.wav is also read", "another folder" },
    { "in.wav cut.wav --out-dir in.wav", "--out-dir", "in.wav" },
    { "in.wav sub/in.aiff --out-dir .", "in.wav and sub/in.aiff", "two folders" },
    { "in.wav out.wav --module gone.vst3", "gone.vst3", "Tarvelline.vst3" },
    { "in.wav out.wav --module in.wav", "in.wav", "not the Tarvelline plug-in" },
};
} // namespace

/** A folder with an old OUT, in which an error must leave everything as it is. */
class RenderErrorTest : public RenderTest
{
protected:
    RenderErrorTest()
    {
        const auto noise = whiteNoise (1000);
        write ("in.wav", { 44100.0, { noise } });
        write ("many.wav", { 44100.0, std::vector<Samples> (9, noise) });
        write ("fast.wav", { 96000.0, { noise } });
        write ("slow.wav", { 7999.0, { noise } });
        write ("quick.wav", { 384001.0, { noise } });
        write ("crowd.wav", { 44100.0, std::vector<Samples> (65, noise) });
        write ("empty.wav", { 44100.0, { {} } });
        write ("cut.wav", { 44100.0, { noise } });
        juce::FileOutputStream cut (file ("cut.wav"));
        EXPECT_TRUE (cut.setPosition (3000) && cut.truncate().wasOk());
        file ("in.wav").createSymbolicLink (file ("link.wav"), true);
        file ("notes.csv").replaceWithText ("# a move\n0.5,mixerPar,1\n0.5;mixerPar;0\n");
        file ("out.wav").replaceWithText ("old");
        file ("far.csv").replaceWithText ("1,pitch,25\n");
        file ("both.csv").replaceWithText ("1,pitch,5\n2,mainRange,1\n");
        file ("bare.csv").replaceWithText ("0.5,mixerPar,1,line\n");
        file ("early.csv").replaceWithText ("0,mixerPar,1\n-0.05,mixerPar,1\n");
        file ("long.csv").replaceWithText ("0.5,mixerPar,1,bend\n");

        for (const auto& [name, typeAndTime] : { std::pair { "patterns.mid", "\0\2\0\0\1\xe0" }, // type 2
                                                 { "beatless.mid", "\0\1\0\0\0\0" },
                                                 { "tickless.mid", "\0\1\0\0\xe7\0" } })
            file (name).replaceWithData (("MThd\0\0\0\6"s + std::string (typeAndTime, 6)).data(), 14);

        EXPECT_EQ (run ("in.wav wrong.flac --set mixerPar=0 --save-state cut.vstpreset").exitCode, 0);
        shell ("sed 's/List\\x02/List\\x00/' cut.vstpreset >none.vstpreset; ln "
               "in.wav hard.wav; ln out.wav hardout.wav; mkdir linked; ln fast.wav linked/in.wav;"
               "printf X | dd of=wrong.flac bs=1 seek=3000 conv=notrunc;"
               "printf '<x' | dd of=cut.vstpreset bs=1 seek=56 conv=notrunc");
        filesBefore = filesThere();
    }

    void TearDown() override
    {
        EXPECT_EQ (filesThere(), filesBefore);
        EXPECT_EQ (file ("out.wav").loadFileAsString(), "old");
    }

    const juce::String seeds { TARVELLINE_READER_SEEDS };
    juce::StringArray filesBefore;
};

TEST_F (RenderErrorTest, MistakesAreNamedAndNothingIsTouched)
{
    const auto inputBefore = file ("in.wav").loadFileAsString();

    // An MP3 that begins loud, and so is taken for one of fewer samples once its table is gone; and zeros without an end.
    auto loudFirst = whiteNoise (14400);
    loudFirst.resize (300000);
    write ("guessed.wav", { 48000.0, { loudFirst } });
    EXPECT_EQ (run ("guessed.wav guessed.mp3 --set mixerPar=0").exitCode, 0);
    shell ("sed -i 's/Xing/none/; s/Info/none/' guessed.mp3; truncate -s 4G huge.wav; dd conv=notrunc of=huge.wav if='"
           + seeds + "/streamed.wav'; head -c -1 '" + seeds + "/gesture.mid' >cut.mid");
    filesBefore = filesThere();

    for (const auto& mistake : mistakes)
    {
        const auto outcome = run (mistake.arguments);
        EXPECT_EQ (outcome.exitCode, 2) << mistake.arguments << ": " << outcome.text;
        EXPECT_TRUE (outcome.text.startsWith ("tarvelline-render: ")) << outcome.text;
        EXPECT_TRUE (outcome.text.contains (mistake.culprit)) << mistake.arguments << ": " << outcome.text;
        EXPECT_TRUE (outcome.text.contains (mistake.accepted)) << mistake.arguments << ": " << outcome.text;
    }

    EXPECT_EQ (file ("in.wav").loadFileAsString(), inputBefore);
}

// A limit on the size of files stands for the full disk. A limit met at the last buffer only is seen by none of the writes
// before it.
TEST_F (RenderErrorTest, FullDiskIsReported)
{
    write ("in.wav", { 44100.0, { whiteNoise (200000) } });

    for (const auto kilobytes : { 64, 780, 788 })
    {
        const auto outcome =
            shell ("trap '' XFSZ; ulimit -f " + juce::String (kilobytes * 2) + "; exec \"$RENDER\" in.wav out.wav");
        EXPECT_EQ (outcome.exitCode, 2) << kilobytes;
        EXPECT_TRUE (outcome.text.contains ("disk full")) << outcome.text;
    }
}

// Interrupted while it writes: one process, several, and one for several files.
TEST_F (RenderErrorTest, InterruptionLeavesNothingBehind)
{
    write ("in.wav", { 192000.0, { whiteNoise (4000000) } });
    file ("in.wav").copyFileTo (file ("too.wav"));
    filesBefore.add ("too.wav");
    filesBefore.sort (false);

    for (const auto signal : { "INT", "TERM" })
        for (const auto files : { "in.wav out.wav", "in.wav too.wav --out-dir . --jobs 2 --format flac",
                                  "in.wav too.wav --out-dir . --format flac" })
        {
            // Until a temporary file is there, or for a second.
            const auto outcome =
                shell ("there=$(ls -A | wc -l); \"$RENDER\" " + juce::String (files)
                       + " --semitones 5 & for i in $(seq 100); do sleep 0.01; [ $(ls -A | wc -l) = $there ] || break; "
                         "done; kill -"
                       + signal + " $!; wait $!");
            EXPECT_EQ (outcome.exitCode, 130) << files << ": " << outcome.text;
        }
}

// A reader of the output that goes away ends the program without a word, or leaves its file in the folder for temporary ones.
TEST_F (RenderErrorTest, BrokenPipeIsAnError)
{
    const auto outcome = shell ("export TMPDIR=$PWD; exec 2>&1; { sleep 0.1; \"$RENDER\" many.wav - ; echo ended with "
                                "$? >&2; } | true; sleep 1");
    EXPECT_TRUE (outcome.text.contains ("Broken pipe")) << outcome.text;
    EXPECT_TRUE (outcome.text.contains ("ended with 2")) << outcome.text;
}

// A failure that takes the others along, is told with a code of success, or left out of the table.
TEST_F (RenderErrorTest, OneOfSeveralFilesFailsAlone)
{
    write ("My Song (2).wav", { 44100.0, { whiteNoise (1000, noiseSeed + 1) } });

    for (const juce::String jobs : { "", " --jobs 2" })
    {
        const auto command = "in.wav cut.wav 'My Song (2).wav' --semitones 2 --out-dir made" + jobs;
        const auto errors = run (command + " 2>&1 >/dev/null"), others = run (command + " 2>/dev/null");
        EXPECT_EQ (errors.exitCode, 1);

        for (const auto part : { "cut.wav          failed   IN: ", "cut off", "2 of 3 files written" })
            EXPECT_TRUE (errors.text.contains (part)) << part << " is not in " << errors.text;

        for (const auto part : { "in.wav           written  ", "My Song (2).wav  written  ", " dBFS, latency " })
            EXPECT_TRUE (others.text.contains (part)) << part << " is not in " << others.text;
    }

    EXPECT_EQ (run ("'My Song (2).wav' alone.wav --semitones 2").exitCode, 0);
    EXPECT_TRUE (file ("made/My-Song-2.wav").hasIdenticalContentTo (file ("alone.wav")));
    filesBefore.addArray (
        juce::StringArray { "My Song (2).wav", "alone.wav", "made", "made/My-Song-2.wav", "made/in.wav" });
    filesBefore.sort (false);
}
} // namespace tarvelline::test
