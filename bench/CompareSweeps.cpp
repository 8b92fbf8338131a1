// SPDX-License-Identifier: GPL-3.0-or-later
// The cost against the work: straight lines, or a reason why not.
#include "bench/CompareChart.h"
#include "bench/CompareShifters.h"

#include <juce_core/juce_core.h>

#include <array>

namespace tarvelline::bench
{
namespace
{
constexpr int rounds = 5;
constexpr double usualRate = 44100.0; // Hz
constexpr int usualBlock = 64, usualShift = 3;
constexpr double timbreShift = -3.0; // semitones against the pitch, of the curve with the timbre in use

struct Setting
{
    double x; // as the chart shows it
    std::vector<int> semitones;
    double rate;
    int blockSize;
    double timbre = 0.0; // semitones against the pitch
};

/** The settings of one curve, in the order of x; curves of one quantity share a panel. */
struct Sweep
{
    const char* quantity;
    bool isLogarithmic;
    const char* name;
    std::vector<Setting> settings;
};

Sweep overVoices()
{
    constexpr std::array semitones { 3, 2, 4, 1, 5, -1, 6, -2 }; // alike in cost, so that only their number counts
    Sweep sweep { "voices", false, "", {} };

    for (int voices = 1; voices <= static_cast<int> (semitones.size()); ++voices)
        sweep.settings.push_back (
            { static_cast<double> (voices), { semitones.begin(), semitones.begin() + voices }, usualRate, usualBlock });

    return sweep;
}

Sweep overShift (const char* name, double timbre)
{
    Sweep sweep { "shift in semitones", false, name, {} };

    for (int shift = -24; shift <= 24; shift += 2)
        sweep.settings.push_back ({ static_cast<double> (shift), { shift }, usualRate, usualBlock, timbre });

    return sweep;
}

Sweep overRate()
{
    Sweep sweep { "sample rate in kHz", false, "", {} };

    for (const auto rate : { 44100.0, 48000.0, 64000.0, 88200.0, 96000.0, 128000.0, 176400.0, 192000.0 })
        sweep.settings.push_back ({ rate / 1000.0, { usualShift }, rate, usualBlock });

    return sweep;
}

Sweep overBlockSize()
{
    Sweep sweep { "block size in samples", true, "", {} };

    for (int size = 16; size <= 4096; size *= 2)
        sweep.settings.push_back ({ static_cast<double> (size), { usualShift }, usualRate, size });

    return sweep;
}

/** The cheapest of some rounds: the machine's other work can only add. */
Cost costOf (const Setting& setting)
{
    const auto shifter = startVoices (setting.rate, setting.semitones, setting.timbre);
    auto best = measure (*shifter, setting.rate, setting.blockSize); // fades in
    best = measure (*shifter, setting.rate, setting.blockSize);

    for (int round = 1; round < rounds; ++round)
    {
        const auto cost = measure (*shifter, setting.rate, setting.blockSize);
        best = { std::min (best.cpuPerSecond, cost.cpuPerSecond), std::min (best.worstBlock, cost.worstBlock) };
    }

    return best;
}
} // namespace

void sweepCosts (const std::string& directory)
{
    const juce::File folder = juce::File::getCurrentWorkingDirectory().getChildFile (directory);
    folder.createDirectory();
    juce::String table = "over,curve,x,cpu_per_second,worst_block_share\n";
    std::vector<Panel> panels;

    for (const auto& sweep : { overVoices(), overShift ("pitch alone", 0.0), overShift ("timbre too", timbreShift),
                               overRate(), overBlockSize() })
    {
        if (panels.empty() || panels.back().name != sweep.quantity)
            panels.push_back ({ sweep.quantity, sweep.isLogarithmic, {}, {} });

        auto& panel = panels.back();
        panel.x.clear();
        panel.curves.push_back ({ sweep.name, {} });

        for (const auto& setting : sweep.settings)
        {
            const auto cost = costOf (setting);
            panel.x.push_back (setting.x);
            panel.curves.back().y.push_back (100.0 * cost.cpuPerSecond);
            table << sweep.quantity << ',' << sweep.name << ',' << setting.x << ','
                  << juce::String (cost.cpuPerSecond, 6) << ',' << juce::String (cost.worstBlock, 4) << '\n';
        }
    }

    folder.getChildFile ("cost.csv").replaceWithText (table);
    saveChart (panels, "percent of one processor core", folder.getChildFile ("cost.png"));
}
} // namespace tarvelline::bench
