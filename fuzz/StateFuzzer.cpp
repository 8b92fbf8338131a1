// SPDX-License-Identifier: GPL-3.0-or-later
// A saved state from an untrusted file: as it stands, and as the text of an envelope that is in order.
#include "fuzz/Require.h"
#include "processor/TarvellineAudioProcessor.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace tarvelline::fuzz
{
namespace
{
juce::MemoryBlock stateOf (TarvellineAudioProcessor& processor)
{
    juce::MemoryBlock state;
    processor.getStateInformation (state);
    return state;
}

void restore (TarvellineAudioProcessor& processor, const juce::MemoryBlock& state)
{
    processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));

    for (const auto* parameter : processor.getParameters())
        require (parameter->getValue() >= 0.0f && parameter->getValue() <= 1.0f, "values are in 0..1");

    for (const auto* wheel : { &processor.mainWheel, &processor.timbWheel })
        require (wheel->point >= 0.0 && wheel->point <= 1.0 && wheel->span > 0.0 && wheel->slewStep >= 0.0,
                 "the wheels stand on their scale");
}

// Up to what 20 decimals leave out.
bool isSame (const TarvellineAudioProcessor& a, const TarvellineAudioProcessor& b)
{
    const auto &first = a.getParameters(), &second = b.getParameters();
    return a.uiHeight == b.uiHeight
           && std::equal (first.begin(), first.end(), second.begin(), second.end(),
                          [] (const auto* p, const auto* q)
                          { return std::abs (p->getValue() - q->getValue()) <= 1.0e-20f; });
}

void tryState (const juce::MemoryBlock& state)
{
    TarvellineAudioProcessor first, second;
    const auto before = stateOf (first);
    const auto hasTag =
        std::string_view (state.begin(), state.getSize()).find ("<TARVELLINEVERSION") != std::string_view::npos;

    first.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    const auto saved = stateOf (first);
    require (hasTag || saved == before, "what is no state changes nothing");

    if (saved == before)
        return;

    restore (first, state);
    restore (second, saved);
    require (isSame (first, second), "a saved state comes back whole");

    juce::AudioBuffer<float> block (2, 64);
    juce::MidiBuffer midi;
    block.clear();
    second.processBlock (block, midi);
    require (std::isfinite (second.mainWheel.point) && std::isfinite (second.timbWheel.point), "the wheels move on");
}

juce::MemoryBlock wrapped (const std::uint8_t* text, std::size_t size)
{
    juce::MemoryBlock state;
    juce::MemoryOutputStream out (state, false);
    out.write ("VC2!", 4);
    out.writeInt (static_cast<int> (size));
    out.write (text, size);
    out.writeByte (0);
    out.flush();
    return state;
}
} // namespace
} // namespace tarvelline::fuzz

int LLVMFuzzerTestOneInput (const std::uint8_t* data, std::size_t size)
{
    tarvelline::fuzz::tryState ({ data, size });
    tarvelline::fuzz::tryState (tarvelline::fuzz::wrapped (data, size));
    return 0;
}
