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
`/usr/share/vst3/presets/Vorntaal/Tarvelline`, `./run.sh --install` into `~/.vst3/presets/Vorntaal/Tarvelline`. In an LV2 host
they are in the plug-in's preset list too: they are a part of its bundle. Elsewhere set the controls by hand: the values stand
below, ranges and shifts in semitones, the others from 0 to 1.

)";

juce::String cellsOf (const Preset& preset, const WheelParameters& wheel)
{
    const auto lastEntry = static_cast<float> (wheelRangeTable.size() - 1);
    const auto span = spanForRange (std::round (preset.value (wheel.range) * lastEntry));
    const auto shift = std::round ((static_cast<double> (preset.value (wheel.wheel)) - 0.5) * span * 100.0) / 100.0;
    juce::String cells;

    for (const auto& cell :
         { juce::String (span), (shift > 0.0 ? "+" : "") + juce::String (shift),
           juce::String (preset.value (wheel.snap) != 0.0f ? "on" : "off"), juce::String (preset.value (wheel.gravity)),
           juce::String (preset.value (wheel.inertia)), juce::String (preset.value (wheel.smooth)) })
        cells << " " << cell << " |";

    return cells;
}

juce::String rowOf (const Preset& preset)
{
    using namespace parameterId;
    juce::String row ("| " + preset.name + " |");

    row << cellsOf (preset, pitchWheel)
        << (preset.value (toggleSize) != 0.0f ? cellsOf (preset, timbreWheel) : " | | | | | |");

    return row << " " << juce::String (preset.value (mixerPar)) << " | "
               << (preset.value (midiOptions) != 0.0f ? "Single" : "Multi") << " |\n";
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
