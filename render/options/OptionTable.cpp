// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/options/OptionTable.h"

#include "processor/Parameters.h"
#include "render/options/Errors.h"
#include "render/options/Files.h"

#include <cmath>

namespace tarvelline::render
{
namespace
{
constexpr int largestBlock = 65536; // samples; more than any host uses
constexpr int mostJobs = 256;       // more than any machine gains by

void addSetting (Options& options, const juce::String& text)
{
    if (! text.containsChar ('='))
        throw UserError ("give parameterId=value, as in --set mixerPar=0.5");

    options.settings.push_back (parseSetting (text.upToFirstOccurrenceOf ("=", false, false).trim(),
                                              text.fromFirstOccurrenceOf ("=", false, false).trim()));
}

int wholeNumber (const juce::String& text, int most)
{
    const auto number = parseNumber (text);

    if (! number || *number < 1.0 || *number > most || *number != std::floor (*number))
        throw UserError ("give a whole number from 1 to " + juce::String (most));

    return static_cast<int> (*number);
}

void setBits (Options& options, const juce::String& text)
{
    if (text != "16" && text != "24" && text != "32")
        throw UserError ("give 16 or 24 (integer) or 32 (float)");

    options.bits = text.getIntValue();
}

void setChannels (Options& options, const juce::String& text)
{
    if (text != "pairs" && text != "single")
        throw UserError ("give pairs or single");

    options.channels = text == "pairs" ? ChannelRule::pairs : ChannelRule::single;
}

void setAlignment (Options& options, const juce::String& text)
{
    if (text != "sound" && text != "host")
        throw UserError ("give sound (times are those in OUT) or host (a host's)");

    options.alignSound = text == "sound";
}

template <juce::File Options::*file>
void nameFile (Options& options, const juce::String& text)
{
    options.*file = fileNamed (text);
}

template <bool Options::*flag>
void raise (Options& options, const juce::String&)
{
    options.*flag = true;
}

template <Options::Action action>
void choose (Options& options, const juce::String&)
{
    options.action = action;
}
} // namespace

const std::vector<OptionRow>& optionTable()
{
    using enum OptionRow::Group;
    using enum OptionRow::Reach;
    using Action = Options::Action;

    static const std::vector<OptionRow> rows {
        { sound, everyRun, "semitones", 0, "S",
          "a steady shift, -24 to +24: chooses the narrowest pitch range that reaches it, and the wheel",
          [] (Options& o, const juce::String& text) { o.semitones = parseSemitones (text); } },
        { sound, everyRun, "formant", 0, "S",
          "a steady shift of the formants (the timbre), -24 to +24, whatever the pitch does; puts the\n"
          "timbre wheel in use, in the narrowest timbre range that reaches it",
          [] (Options& o, const juce::String& text) { o.formant = parseSemitones (text); } },
        { sound, everyRun, "keep-formants", 0, nullptr, "--formant 0: a voice stays the same voice, higher or lower",
          [] (Options& o, const juce::String&) { o.formant = 0.0; } },
        { sound, everyRun, "set", 0, "ID=VALUE",
          "a parameter's setting from the first sample on; VALUE is normalised, 0 to 1; may be repeated", addSetting },
        { sound, everyRun, "preset", 0, "NAME", "begins with a preset of the plug-in; the options above change it",
          [] (Options& o, const juce::String& text) { o.preset = text; } },
        { sound, everyRun, "preset-list", 0, nullptr, "lists the presets that are installed",
          choose<Action::listPresets> },
        { sound, everyRun, "state", 0, "FILE",
          "begins with a state of the plug-in, saved by --save-state or as a preset by a host (.vstpreset)",
          nameFile<&Options::state> },
        { sound, everyRun, "midi", 0, "FILE",
          "plays the notes and pitch-bends of a standard MIDI file (all tracks and channels, its tempo map)",
          nameFile<&Options::midi> },
        { sound, everyRun, "automate", 0, "FILE",
          "moves parameters: lines of \"seconds,parameterId,value\", value 0 to 1, or of\n"
          "\"seconds,pitch,semitones\" or \"seconds,timbre,semitones\"; # begins a comment. With a fourth\n"
          "field, \"line\", it is reached in a straight line from the value before",
          nameFile<&Options::automation> },
        { sound, everyRun, "align", 0, "sound|host",
          "sound: what --automate and --midi bring is heard at its time in OUT; host, unless given:\n"
          "it comes when a host would bring it, and is heard up to one latency earlier",
          setAlignment },

        { files, firstRun, "out-dir", 0, "DIR",
          "renders any number of IN into a folder, under their names; characters that shells read become -",
          nameFile<&Options::outputFolder> },
        { files, firstRun, "keep-folders", 0, nullptr,
          "keeps the folders and the names of IN as they are below DIR, so that two takes of one name in\n"
          "two folders never meet",
          raise<&Options::keepFolders> },
        { files, firstRun, "no-clobber", 0, nullptr,
          "leaves every OUT that is there already as it is, with a note: the same command again renders\n"
          "what is missing",
          raise<&Options::noClobber> },
        { files, firstRun, "jobs", 0, "N", "files at once, each in a process with a plug-in of its own; 1 unless given",
          [] (Options& o, const juce::String& text) { o.jobs = wholeNumber (text, mostJobs); } },
        { files, everyRun, "format", 0, "KIND",
          "wav, w64, aiff, caf, au, flac, ogg (Vorbis), opus or mp3; what OUT's ending says unless given,\n"
          "and wav in a folder and through a pipe",
          [] (Options& o, const juce::String& text) { o.format = text; } },
        { files, everyRun, "bits", 0, "16|24|32",
          "bits of a sample: 16 with dither, 24, or 32-bit float, which cannot clip; not in FLAC, and the\n"
          "lossy kinds have none. 32 unless given, in AIFF and FLAC 24",
          setBits },
        { files, everyRun, "channels", 0, "pairs|single",
          "of more than two channels, pairs: the first and second share a plug-in, the third and fourth,\n"
          "...; single: none do; left and right of one place unless given, as the file tells",
          setChannels },
        { files, everyRun, "plot", 0, "FILE.png", "draws spectrograms of IN and OUT, with the shift that sounds",
          nameFile<&Options::plot> },
        { files, everyRun, "save-state", 0, "FILE",
          "writes the state that playing begins with, as a .vstpreset; without IN it plays nothing",
          nameFile<&Options::savedState> },

        { other, everyRun, "module", 0, "PATH",
          "the plug-in to load, Tarvelline.vst3; else the one built or installed with this program, then\n"
          "that of this user and that of this machine, where hosts look",
          nameFile<&Options::module> },
        { other, everyRun, "block", 0, "N",
          "samples the plug-in gets at once, 512 unless given; events split blocks and come at their sample",
          [] (Options& o, const juce::String& text) { o.blockSize = wholeNumber (text, largestBlock); } },
        { other, everyRun, "quiet", 'q', nullptr, "prints errors and nothing else", raise<&Options::quiet> },
        { other, everyRun, "verbose", 'v', nullptr, "tells which plug-in and which settings play",
          raise<&Options::verbose> },
        { other, everyRun, "help", 'h', nullptr, "prints this", choose<Action::showHelp> },
        { other, everyRun, "version", 0, nullptr, "prints the version", choose<Action::showVersion> },

        { internal, firstRun, "worker", 0, nullptr, "", raise<&Options::isWorker> },
    };

    return rows;
}
} // namespace tarvelline::render
