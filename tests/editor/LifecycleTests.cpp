// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"

#include <set>

namespace tarvelline::test
{
namespace
{
// A window on a processor that has no engine and no rate yet, a state that does not reach one that stands open, or a dial
// that shows a wheel which was never set.
TEST (Opening, NeedsNoPreparedProcessorAndFollowsAState)
{
    ProcessorRig rig, saved;
    saved.set (parameterId::mixerPar, 0.25f);
    juce::MemoryBlock state;
    saved.processor.getStateInformation (state);

    const std::unique_ptr<juce::AudioProcessorEditor> editor (rig.processor.createEditor());
    EXPECT_TRUE (editor->createComponentSnapshot (editor->getLocalBounds()).isValid());

    for (const auto range : { 5, 2 })
    {
        dynamic_cast<juce::ComboBox*> (editor->findChildWithID ("pitchRangeBox"))
            ->setSelectedItemIndex (range, juce::sendNotificationSync);
        auto* dial = dynamic_cast<FollowDial*> (editor->findChildWithID ("pitchDial"));
        ((juce::Timer&) *dial).timerCallback(); // a private base, which only this form of cast reaches
        EXPECT_EQ (wordsOf (*dial), std::vector<juce::String> { "0.00" });
    }

    rig.processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    EXPECT_EQ (dynamic_cast<juce::Slider*> (editor->findChildWithID ("mixerSlider"))->getValue(), 0.25);
}

TEST (Accessibility, EveryControlHasATitleOfItsOwn)
{
    EditorRig rig;
    std::multiset<juce::String> titles;

    for (auto* child : rig.editor->getChildren())
        if (child->getComponentID().isNotEmpty()) // all but the read-out and the corner to drag
            titles.insert (child->getTitle());

    EXPECT_EQ (std::set (titles.begin(), titles.end()).size(), titles.size());
    EXPECT_EQ (titles.count ({}), 0u);
}

template <typename Control>
juce::String spoken (EditorRig& rig, const juce::String& id)
{
    const auto handler = rig.control<Control> (id).createAccessibilityHandler();
    return handler->getTitle() + ": " + handler->getValueInterface()->getCurrentValueAsString();
}

// A switch that says "on" for a mode that has a name, a box named after what is chosen in it, a picture that says nothing.
TEST (Accessibility, AScreenReaderHearsWhatTheEyeSees)
{
    EditorRig rig;
    rig.set (parameterId::midiOptions, 0.0f);
    rig.choose ("pitchRangeBox", 4);

    for (const auto note : std::initializer_list<juce::uint8> { 36, 61, 83, 84 }) // the last is beyond the strip
        rig.send ({ 0x90, note, 100 });

    rig.playBlock (8);
    rig.followTo ("pitch", 0.75);

    EXPECT_EQ (spoken<ModeButton> (rig, "midiModeButton"), "MIDI note mode: Multi");
    EXPECT_EQ (spoken<MyComboBox> (rig, "pitchRangeBox"), "Pitch range in semitones: 24");
    EXPECT_EQ (spoken<FollowDial> (rig, "pitchDial"), "Sounding pitch shift: 6.00 semitones");
    EXPECT_EQ (spoken<Keyboard> (rig, "keyboard"), "Held notes: C2 C#4 B5");
}
} // namespace
} // namespace tarvelline::test
