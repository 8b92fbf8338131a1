// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/presets/PresetFiles.h"

#include <cmath>

namespace tarvelline::presets
{
namespace
{
constexpr auto introduction = R"(# Factory presets

Gestures to start from. A preset sets every control, the wheels' places too; moving the wheel is up to you. In a DAW that
reads `.vstpreset` files they are in the plug-in's preset list, under its maker Vorntaal: the packages put them into
`/usr/share/vst3/presets/Vorntaal/Tarvelline`, `./run.sh --install` into `~/.vst3/presets/Vorntaal/Tarvelline`. Elsewhere set
the controls by hand: the values stand below, ranges and shifts in semitones, the others from 0 to 1.

)";

class Values
{
public:
    explicit Values (const Preset& source) : preset (source) {}

    float get (const char* id) const { return preset.values[parameterIndex (id)]; }

    juce::String wheel (const char* range, const char* wheelId, const char* snap, const char* gravity,
                        const char* inertia, const char* smooth) const
    {
        const auto span = spanForRange (std::round (get (range) * 5.0f));
        const auto shift = std::round ((static_cast<double> (get (wheelId)) - 0.5) * span * 100.0) / 100.0;
        juce::String cells;

        for (const auto& cell : { juce::String (span), (shift > 0.0 ? "+" : "") + juce::String (shift),
                                  juce::String (get (snap) != 0.0f ? "on" : "off"), juce::String (get (gravity)),
                                  juce::String (get (inertia)), juce::String (get (smooth)) })
            cells << " " << cell << " |";

        return cells;
    }

private:
    const Preset& preset;
};

juce::String rowOf (const Preset& preset)
{
    using namespace parameterId;
    const Values values (preset);
    juce::String row ("| " + preset.name + " |");

    row << values.wheel (mainRange, mainWheelPar, mainSnap, mainGravityPar, mainInertiaPar, mainSmoothPar);
    row << (values.get (toggleSize) != 0.0f
                ? values.wheel (timbRange, timbWheelPar, timbSnap, timbGravityPar, timbInertiaPar, timbSmoothPar)
                : " | | | | | |");

    return row << " " << juce::String (values.get (mixerPar)) << " | "
               << (values.get (midiOptions) != 0.0f ? "Single" : "Multi") << " |\n";
}
} // namespace

juce::String presetPage (const std::vector<Preset>& table)
{
    juce::String page (introduction);

    for (const auto& preset : table)
        page << "**" << preset.name << ".** " << preset.hear << "\n*Play:* " << preset.play << "\n\n";

    page << "## Values\n\nWhere the timbre columns are empty the timbre wheel is not in use.\n\n"
            "| preset | range | shift | snap | gravity | inertia | smooth | timbre range | shift | snap | gravity "
            "| inertia | smooth | mix | MIDI |\n|---|"
         << juce::String::repeatedString ("---|", 14) << "\n";

    for (const auto& preset : table)
        page << rowOf (preset);

    return page;
}
} // namespace tarvelline::presets
