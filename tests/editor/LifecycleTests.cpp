// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/DrawnText.h"

#include <set>

namespace tarvelline::test
{
namespace
{
using juce::Rectangle;

// Circles stretched to ellipses where a host forces other proportions, proportions "mended" that are right as hosts round, or a
// ratio that reaches out of the window that a host gives to the editor.
TEST (Layout, KeepsItsProportionsInForcedBounds)
{
    for (const auto& [full, window, wheel] :
         { std::tuple { false, Rectangle<int> (438, 288), Rectangle<int> (137, 33, 165, 165) },
           { false, { 256, 400 }, { 46, 89, 165, 165 } },
           { true, { 512, 400 }, { 46, 89, 165, 165 } },
           { true, { 515, 288 }, { 47, 33, 165, 165 } },
           { false, { 356, 400 }, { 64, 45, 229, 229 } } })
    {
        EditorRig rig (288, full);
        rig.editor->setBoundsConstrained (window);
        EXPECT_EQ (rig.editor->getBounds(), window);
        EXPECT_EQ (rig.control ("mainWheelSlider").getBounds(), wheel) << window.toString();
        EXPECT_EQ (rig.processor.uiHeight, window.getHeight());

        const auto around =
            pictureOf (*rig.editor).getPixelAt (0, window.getHeight() - 1); // ground, not the panel's lower edge
        EXPECT_EQ (luminance (around) > 0.15, window.getWidth() != 356) << window.toString();
    }
}

// A height that the limits fit to a truncated width (500 opens at 499), or a stored one that no window can have.
TEST (Opening, TakesTheStoredHeight)
{
    for (const auto& [stored, full, width, height] :
         { std::tuple { 0, true, 512, 288 }, std::tuple { 0, false, 256, 288 }, std::tuple { 500, true, 888, 500 },
           std::tuple { 500, false, 444, 500 }, std::tuple { 100, true, 458, 258 }, std::tuple { 100, false, 229, 258 },
           std::tuple { 9999, true, 1024, 576 }, std::tuple { 9999, false, 512, 576 },
           std::tuple { -7, false, 229, 258 } })
    {
        EditorRig rig (stored, full);
        EXPECT_EQ (rig.editor->getBounds(), Rectangle<int> (width, height));
        EXPECT_EQ (rig.processor.uiHeight, stored) << "only a visible window records its height";
    }
}

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
        EXPECT_EQ (textsOf (*dial).at (0).text, "0.00");
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
    EXPECT_TRUE (handler->getValueInterface()->isReadOnly()) << id;
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

    EXPECT_EQ (rig.control<juce::Slider> ("mixerSlider").getTextFromValue (0.257), "0.26");
    EXPECT_EQ (rig.control<juce::Slider> ("mainWheelSlider").getTextFromValue (0.375), "-3.00 semitones");
    EXPECT_EQ (rig.control<juce::Slider> ("mainWheelSlider").getValueFromText ("-3.00 semitones"), 0.375);
    EXPECT_EQ (spoken<ModeButton> (rig, "midiModeButton"), "MIDI note mode: Multi");
    EXPECT_EQ (spoken<MyComboBox> (rig, "pitchRangeBox"), "Pitch range in semitones: 24");
    EXPECT_EQ (spoken<FollowDial> (rig, "pitchDial"), "Sounding pitch shift: 6.00 semitones");
    EXPECT_EQ (spoken<Keyboard> (rig, "keyboard"), "Held notes: C2 C#4 B5");
}
} // namespace
} // namespace tarvelline::test
