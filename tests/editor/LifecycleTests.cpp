// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"

#include <map>
#include <set>

namespace tarvelline::test
{
namespace
{
// A control that outlives its look draws with a dead one; the framework cannot always tell.
TEST (Closing, TakesEveryLookFromItsControlsWhileItLives)
{
    EditorRig rig;
    std::map<juce::String, bool> detached;

    for (auto* child : rig.editor->getChildren())
    {
        if (&child->getLookAndFeel() == &juce::LookAndFeel::getDefaultLookAndFeel())
            continue;

        const auto id = child->getComponentID();
        detached[id] = false;
        const juce::WeakReference<juce::LookAndFeel> look (&child->getLookAndFeel());
        RepaintListener::listenTo (*child, // a change of look repaints
                                   [=, &detached] (auto)
                                   {
                                       if (look != nullptr && &child->getLookAndFeel() != look.get())
                                           detached[id] = true;
                                   });
    }

    EXPECT_EQ (detached.size(), 17u);
    rig.editor.reset();

    for (const auto& [id, done] : detached)
        EXPECT_TRUE (done) << id;
}

// Callbacks into a window that is gone.
TEST (Closing, LeavesTheProcessorAloneAfterwards)
{
    EditorRig rig;
    rig.editor.reset();
    const double steps = rig.processor.bendSteps;

    for (const auto& row : parameterTable)
        rig.set (row.id, 0.3f * row.rangeEnd);

    rig.play (silence (4096));
    EXPECT_EQ (rig.processor.bendSteps, steps);
    rig.open();
    EXPECT_EQ (rig.textOf ("pitchSnapButton"), "Off");
}

TEST (Opening, TwiceAtOnceShowsTheSame)
{
    EditorRig rig;
    const std::unique_ptr<juce::AudioProcessorEditor> second (rig.processor.createEditor());
    rig.set (parameterId::mainWheelPar, 0.7f);
    EXPECT_NEAR (dynamic_cast<juce::Slider*> (second->findChildWithID ("mainWheelSlider"))->getValue(), 0.7, 1.0e-6);
    rig.editor.reset();
    rig.set (parameterId::mainWheelPar, 0.2f);
    EXPECT_NEAR (dynamic_cast<juce::Slider*> (second->findChildWithID ("mainWheelSlider"))->getValue(), 0.2, 1.0e-6);
}

// A host may show the window before it has prepared anything.
TEST (Opening, BeforeThePreparationShowsTheCentre)
{
    ProcessorRig rig;
    const std::unique_ptr<juce::AudioProcessorEditor> editor (rig.processor.createEditor());
    editor->setVisible (true);
    EXPECT_TRUE (editor->createComponentSnapshot (editor->getLocalBounds()).isValid());
}

TEST (Accessibility, EveryControlHasATitleOfItsOwn)
{
    EditorRig rig;
    std::set<juce::String> titles;

    for (auto* child : rig.editor->getChildren())
    {
        if (child->getComponentID().isEmpty()) // the read-out and the corner to drag
            continue;

        EXPECT_TRUE (child->getTitle().isNotEmpty()) << child->getComponentID();
        EXPECT_TRUE (titles.insert (child->getTitle()).second) << child->getTitle();
    }
}

juce::StringArray tabOrder (EditorRig& rig)
{
    juce::StringArray ids;
    auto traverser = rig.editor->createKeyboardFocusTraverser();

    for (auto* control : traverser->getAllComponents (rig.editor.get()))
        ids.add (control->getComponentID());

    return ids;
}

// A control that the Tab key never reaches, or a display where it stops for nothing.
TEST (Accessibility, TabVisitsEveryControlOnce)
{
    EditorRig rig;
    rig.toggle ("sizeButton", true);
    auto visited = tabOrder (rig);
    juce::StringArray controls;

    for (const auto& bound : boundSliders)
        controls.add (bound.control);
    for (const auto& bound : boundButtons)
        controls.add (bound.control);
    for (const auto& bound : boundBoxes)
        controls.add (bound.control);

    visited.sort (false);
    controls.sort (false);
    EXPECT_EQ (visited.joinIntoString (" "), controls.joinIntoString (" "));
}

// Row by row, as the eye goes.
TEST (Accessibility, TabGoesFromTopToBottom)
{
    EditorRig rig;
    rig.toggle ("sizeButton", true);
    auto y = 0;

    for (const auto& id : tabOrder (rig))
    {
        EXPECT_GE (rig.control (id).getY(), y) << id;
        y = rig.control (id).getY();
    }
}

// Half of the window is outside it then: the Tab key would wander off to controls that nobody sees.
TEST (Accessibility, TabStaysInsideTheHalfWindow)
{
    EditorRig rig;

    for (const auto& id : tabOrder (rig))
        EXPECT_TRUE (rig.editor->getLocalBounds().contains (rig.control (id).getBounds())) << id;
}
} // namespace
} // namespace tarvelline::test
