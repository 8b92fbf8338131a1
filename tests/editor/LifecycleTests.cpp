// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"

#include <map>
#include <set>
#include <span>

namespace tarvelline::test
{
namespace
{
// A control that outlives its look draws with a dead one; the framework cannot always tell.
TEST (Closing, TakesEveryLookFromItsControlsWhileItLives)
{
    std::map<juce::String, bool> detached;
    EditorRig rig (0, true);

    for (auto* child : rig.editor->getChildren())
    {
        if (&child->getLookAndFeel() == &juce::LookAndFeel::getDefaultLookAndFeel())
            continue;

        // Taking it away repaints; a look that died before does not, and the control never hears of it.
        RepaintListener::listenTo (*child,
                                   [child, look = &child->getLookAndFeel(), &done = detached[child->getComponentID()]]
                                   { done = done || &child->getLookAndFeel() != look; });
    }

    rig.editor.reset();
    EXPECT_EQ (detached.size(), 17u);

    for (const auto& [id, done] : detached)
        EXPECT_TRUE (done) << id;
}

// Callbacks into a window that is gone, or a second window that goes with the first.
TEST (Closing, LeavesTheProcessorAndOtherWindowsAlone)
{
    EditorRig rig;
    const std::unique_ptr<juce::AudioProcessorEditor> second (rig.processor.createEditor());
    rig.editor.reset();

    for (const auto& row : parameterTable)
        rig.set (row.id, 0.3f * row.rangeEnd);

    const auto* wheel = dynamic_cast<juce::Slider*> (second->findChildWithID ("mainWheelSlider"));
    EXPECT_NEAR (wheel->getValue(), rig.get (parameterId::mainWheelPar), 1.0e-6);
    EXPECT_EQ (rig.processor.bendSteps, 0.0);
}

// A window on a processor that has no span, no engine and no rate yet, or a state that does not reach one that stands open.
TEST (Opening, NeedsNoPreparedProcessorAndFollowsAState)
{
    ProcessorRig rig, saved;
    saved.set (parameterId::mixerPar, 0.25f);
    juce::MemoryBlock state;
    saved.processor.getStateInformation (state);

    const std::unique_ptr<juce::AudioProcessorEditor> editor (rig.processor.createEditor());
    EXPECT_TRUE (editor->createComponentSnapshot (editor->getLocalBounds()).isValid());
    rig.processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));
    EXPECT_EQ (dynamic_cast<juce::Slider*> (editor->findChildWithID ("mixerSlider"))->getValue(), 0.25);
}

juce::StringArray tabOrder (EditorRig& rig)
{
    juce::StringArray ids;

    for (auto* control : rig.editor->createKeyboardFocusTraverser()->getAllComponents (rig.editor.get()))
        ids.add (control->getComponentID());

    return ids;
}

// A control that the Tab key never reaches, a display where it stops for nothing, or a walk to and fro.
TEST (Accessibility, TabVisitsEveryControlOnceFromTopToBottom)
{
    EditorRig rig;
    rig.toggle ("sizeButton", true);
    std::set<juce::String> controls;
    const auto visited = tabOrder (rig);
    auto y = 0;

    for (const auto& list : { std::span<const Bound> (boundSliders), std::span<const Bound> (boundButtons),
                              std::span<const Bound> (boundBoxes) })
        for (const auto& bound : list)
            controls.insert (bound.control);

    EXPECT_EQ (visited.size(), static_cast<int> (controls.size()));

    for (const auto& id : visited)
    {
        EXPECT_EQ (controls.erase (id), 1u) << id;
        EXPECT_GE (rig.control (id).getY(), y) << id;
        y = rig.control (id).getY();
    }
}

// Half of the design is outside the window then: the Tab key would wander off to controls that nobody sees.
TEST (Accessibility, TabStaysInsideTheHalfWindow)
{
    EditorRig rig;

    for (const auto& id : tabOrder (rig))
        EXPECT_TRUE (rig.editor->getLocalBounds().contains (rig.control (id).getBounds())) << id;
}

TEST (Accessibility, EveryControlHasATitleOfItsOwn)
{
    EditorRig rig;
    std::set<juce::String> titles;

    for (auto* child : rig.editor->getChildren())
        if (child->getComponentID().isNotEmpty()) // all but the read-out and the corner to drag
            titles.insert (child->getTitle());

    EXPECT_EQ (titles.size(), 20u);
    EXPECT_EQ (titles.count ({}), 0u);
}
} // namespace
} // namespace tarvelline::test
