// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/render/RenderRig.h"

namespace tarvelline::test
{
namespace
{
struct Mistake
{
    const char* arguments;
    const char* culprit;  // what the message must name
    const char* accepted; // and what it must offer
};

const Mistake mistakes[] = {
    { "", "IN and OUT", "--help" },
    { "in.wav out.wav --loud", "--loud", "--help" },
    { "in.wav out.wav --set mixer=0.5", "\"mixer\"", "mixerPar" },
    { "in.wav out.wav --set mixerPar=nan", "nan", "0 to 1" },
    { "in.wav out.wav --semitones 24.5", "24.5", "-24 to +24" },
    { "in.wav out.wav --semitones 5 --set mainRange=1", "mainRange", "leave out" },
    { "in.wav out.wav --block 0", "--block 0", "1 to 65536" },
    { "gone.wav out.wav", "gone.wav", "there is no file" },
    { "notes.csv out.wav", "notes.csv", "WAV, AIFF or FLAC" },
    { "five.wav out.wav", "five.wav", "mono or stereo" },
    { "cut.wav out.wav", "cut.wav", "cut off" },
    { "in.wav in.wav", "in.wav", "another file" },
    { "in.wav link.wav", "in.wav", "another file" },
    { "in.wav gone/out.wav", "gone", "there is no folder" },
    { "in.wav /dev/null", "/dev/null", "not a file" },
    { "in.wav out.wav --plot out.wav", "out.wav", "another file" },
    { "in.wav out.wav --midi notes.csv", "notes.csv", "standard MIDI file" },
    { "in.wav out.wav --automate gone.csv", "gone.csv", "cannot read" },
    { "in.wav out.wav --automate notes.csv", "notes.csv, line 3", "seconds,parameterId,value" },
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
        write ("five.wav", { 44100.0, { noise, noise, noise, noise, noise } });
        write ("cut.wav", { 44100.0, { noise } });
        juce::FileOutputStream cut (file ("cut.wav"));
        EXPECT_TRUE (cut.setPosition (3000) && cut.truncate().wasOk());
        file ("in.wav").createSymbolicLink (file ("link.wav"), true);
        file ("notes.csv").replaceWithText ("# a move\n0.5,mixerPar,1\n0.5;mixerPar;0\n");
        file ("out.wav").replaceWithText ("old");
        filesBefore = filesThere();
    }

    void TearDown() override
    {
        EXPECT_EQ (filesThere(), filesBefore);
        EXPECT_EQ (file ("out.wav").loadFileAsString(), "old");
    }

    juce::StringArray filesBefore;
};

TEST_F (RenderErrorTest, MistakesAreNamedAndNothingIsTouched)
{
    const auto inputBefore = file ("in.wav").loadFileAsString();

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

TEST_F (RenderErrorTest, InterruptionLeavesNothingBehind)
{
    write ("in.wav", { 192000.0, { whiteNoise (4000000) } });

    for (const auto signal : { "INT", "TERM" })
    {
        const auto outcome = shell ("\"$RENDER\" in.wav out.wav --semitones 5 & while [ $(ls | wc -l) = "
                                    + juce::String (filesBefore.size()) + " ]; do sleep 0.01; done; kill -"
                                    + juce::String (signal) + " $!; wait $!");
        EXPECT_EQ (outcome.exitCode, 130) << outcome.text;
    }
}
} // namespace tarvelline::test
