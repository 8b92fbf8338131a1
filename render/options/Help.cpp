// SPDX-License-Identifier: GPL-3.0-or-later
#include "processor/Parameters.h"
#include "render/options/OptionTable.h"

#include <iterator>

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

)";

constexpr auto examples = R"(
Examples:
  tarvelline-render in.wav out.wav --semitones -5
  tarvelline-render in.wav out.flac --preset "Tape Stop" --automate moves.csv --plot moves.png
  tarvelline-render in.wav choir.wav --midi chord.mid --set midiOptions=0
  tarvelline-render voice.wav higher.wav --semitones 4 --keep-formants
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
any host, unless --align sound is given; voices begin in time. Of notes at the same time each comes one sample after the one
before. --semitones, --formant and tables of semitones choose the range; they do not go with a --set or a line of it.

An option's value follows it or stands behind =, its name may be cut short while it is the only one so begun, and what comes
after -- is the name of a file.

Files are written beside their place and moved there once they are whole. Ends with 0 when all is done; with 1 when of
several files some failed, which a table at the end names; with 2 after an error, and then leaves OUT as it was; with 130
when interrupted.
)";

juce::String describe (const OptionRow& row)
{
    constexpr int width = 18; // letters of the first column
    juce::String name ("--" + juce::String (row.name));
    juce::String text;

    if (row.letter != 0)
        name = "-" + juce::String::charToString (static_cast<juce::juce_wchar> (row.letter)) + ", " + name;

    if (row.argument != nullptr)
        name << " " << row.argument;

    for (const auto& line : juce::StringArray::fromLines (row.help))
    {
        text << "  " << name.paddedRight (' ', width) << "  " << line << "\n";
        name.clear();
    }

    return text;
}
} // namespace

juce::String helpText()
{
    constexpr const char* headings[] = { "Sound", "Files", "Other" };
    juce::String text (usage);

    for (std::size_t group = 0; group < std::size (headings); ++group)
    {
        text << (group > 0 ? "\n" : "") << headings[group] << ":\n";

        for (const auto& row : optionTable())
            if (row.group == static_cast<OptionRow::Group> (group))
                text << describe (row);
    }

    text << examples;

    for (const auto& row : parameterTable)
        text << "  " << juce::String (row.id).paddedRight (' ', 16) << juce::String (row.name).paddedRight (' ', 16)
             << juce::String (row.defaultValue / row.rangeEnd, 1) << "  " << row.meaning << "\n";

    return text + notes;
}
} // namespace tarvelline::render
