// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "render/options/Options.h"

#include <array>

namespace tarvelline::render
{
namespace
{
constexpr auto usage = R"(Plays recordings through the Tarvelline plug-in, as a host does, and writes the results.

usage: tarvelline-render IN OUT [options]
       tarvelline-render IN... --out-dir DIR [options]
       tarvelline-render --save-state FILE [options]

IN is a WAV, W64, AIFF, CAF, AU, FLAC, Ogg Vorbis, Opus or MP3 file, of 1 to 64 channels, at 8 to 384 kHz. OUT becomes a file of
the kind that its ending names, of the same rate and channels. The two line up to the sample: the latency is taken out. OUT is
one latency longer than IN, for what rings on. - stands for the standard input or output.

Sound:
  --set ID=VALUE      a parameter's setting from the first sample on; VALUE is normalised, 0 to 1; may be repeated
  --semitones S       a steady shift, -24 to +24: chooses the narrowest pitch range that reaches it, and the wheel
  --preset NAME       begins with a preset of the plug-in; --set and --semitones change it
  --preset-list       lists the presets that are installed
  --state FILE        begins with a state of the plug-in, saved by --save-state or as a preset by a host (.vstpreset)
  --midi FILE         plays the notes and pitch-bends of a standard MIDI file (all tracks and channels, its tempo map)
  --automate FILE     moves parameters: lines of "seconds,parameterId,value", value 0 to 1; # begins a comment.
                      "seconds,parameterId,value,line" is reached in a straight line from the parameter's value before

Files:
  --out-dir DIR       renders any number of IN into a folder, under their names; characters that shells read become -
  --jobs N            files at once, each in a process with a plug-in of its own; 1 unless given
  --format KIND       wav, w64, aiff, caf, au, flac, ogg (Vorbis), opus or mp3; what OUT's ending says unless given, and wav
                      in a folder and through a pipe
  --channels RULE     of more than two channels, pairs: the first and second share a plug-in, the third and fourth, ...;
                      single: none do; left and right of one place unless given, as the file tells
  --bits 16|24|32     bits of a sample: 16 with dither, 24, or 32-bit float, which cannot clip; not in FLAC, and the lossy
                      kinds have none. 32 unless given, in AIFF and FLAC 24
  --plot FILE.png     draws spectrograms of IN and OUT, with the shift that sounds
  --save-state FILE   writes the state that playing begins with, as a .vstpreset; without IN it plays nothing

Other:
  --module PATH       the plug-in to load, Tarvelline.vst3; else the one built or installed with this program, then
                      those in ~/.vst3, /usr/local/lib/vst3 and /usr/lib/vst3
  --block N           samples the plug-in gets at once, 512 unless given; events split blocks and come at their sample
  --help, --version

Examples:
  tarvelline-render in.wav out.wav --semitones -5
  tarvelline-render in.wav out.flac --preset "Tape Stop" --automate moves.csv --plot moves.png
  tarvelline-render in.wav choir.wav --midi chord.mid --set midiOptions=0
  tarvelline-render takes/*.wav --out-dir shifted --jobs 4 --semitones 7 --bits 24
  tarvelline-render --save-state mine.vstpreset --semitones 3 --set mixerPar=0.5

Parameters (ID, name, value unless set, meaning):
)";

constexpr auto notes = R"(
Ranges of 2, 4, 6, 12, 24, 48 semitones are the values 0, 0.2, 0.4, 0.6, 0.8, 1; a wheel at 1 shifts up by half its range.
The engine works in hops of whole samples: the shift that sounds is within 14 cents of the one asked for up to an octave,
within 28 beyond. Gravity, inertia, smoothing and midiOptions take effect when playing begins: give them with --set;
--automate changes nothing about them. With midiOptions at 1 a note transposes by its distance from middle C (60), and the
transposition outlasts the note; at 0 every held note is a voice, up to eight, and without notes only the dry share of the
mixer sounds. A wheel's move acts on what leaves the plug-in and so sounds up to one latency before its time in OUT, as in
any host; voices begin in time. Of notes at the same time each comes one sample after the one before.

Files are written beside their place and moved there once they are whole. Ends with 0 when all is done; with 1 when of
several files some failed, which a table at the end names; with 2 after an error, and then leaves OUT as it was; with 130
when interrupted.
)";

// In the order of parameterTable.
constexpr std::array<const char*, 15> meanings {
    "range of the pitch wheel",
    "range of the timbre wheel",
    "pitch wheel, 0.5 is the centre",
    "pull of the moving pitch towards the wheel",
    "acceleration of the moving pitch",
    "slowness of the pitch wheel",
    "wheel steps in the editor, no effect here",
    "timbre wheel, 0.5 is the centre",
    "pull of the moving timbre towards the wheel",
    "acceleration of the moving timbre",
    "slowness of the timbre wheel",
    "wheel steps in the editor, no effect here",
    "share of the shifted sound, the rest is the input",
    "the timbre wheel is in use unless 0",
    "notes: 0 plays voices, anything else transposes",
};
} // namespace

juce::String helpText()
{
    juce::String text (usage);

    for (std::size_t i = 0; i < parameterTable.size(); ++i)
    {
        const auto& row = parameterTable[i];
        text << "  " << juce::String (row.id).paddedRight (' ', 16) << juce::String (row.name).paddedRight (' ', 16)
             << juce::String (row.defaultValue / row.rangeEnd, 1) << "  " << meanings[i] << "\n";
    }

    return text + notes;
}
} // namespace tarvelline::render
