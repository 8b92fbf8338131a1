// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/editor/EditorRig.h"
#include "tests/support/MessagePump.h"

#include <atomic>
#include <span>
#include <thread>
#include <utility>

namespace tarvelline::test
{
namespace
{
using namespace parameterId;

// Attachments crossed, or one missing, both ways.
TEST (Binding, ButtonsAndBoxesAndTheirParametersMoveEachOther)
{
    EditorRig rig;

    for (const auto& [control, id] : boundButtons)
    {
        rig.set (id, 0.49f);
        EXPECT_FALSE (rig.control<juce::Button> (control).getToggleState()) << id;
        rig.set (id, 0.5f);
        EXPECT_TRUE (rig.control<juce::Button> (control).getToggleState()) << id;
        rig.toggle (control, false);
        EXPECT_EQ (rig.get (id), 0.0f) << control;
    }

    for (const auto& [control, id] : boundBoxes)
    {
        rig.choose (control, 5);
        EXPECT_EQ (rig.get (id), 5.0f) << control;
        rig.set (id, 2.0f);
        EXPECT_EQ (rig.control<juce::ComboBox> (control).getText(), "6") << id;
    }
}

/** A host that has a menu for every parameter, and hears how its parameters are edited. */
struct ListeningHost : juce::AudioProcessorEditorHostContext,
                       juce::HostProvidedContextMenu,
                       juce::AudioProcessorParameter::Listener
{
    std::unique_ptr<HostProvidedContextMenu>
    getContextMenuForParameter (const juce::AudioProcessorParameter* p) const override
    {
        asked = p;
        return std::make_unique<ListeningHost>();
    }
    juce::PopupMenu getEquivalentPopupMenu() const override { return {}; }
    void showNativeMenu (juce::Point<int>) const override {}
    void parameterValueChanged (int, float) override { heard << "changed "; }
    void parameterGestureChanged (int, bool begins) override { heard << (begins ? "begin " : "end "); }
    mutable const juce::AudioProcessorParameter* asked = nullptr;
    juce::String heard;
};

// A right click that turns what it asks about, asks about another, or is lost on a host without menus.
TEST (HostManners, RightClicksAskForTheMenu)
{
    ListeningHost host; // outlives what it listens to
    EditorRig rig (0, true);

    for (const auto& kind : std::initializer_list<std::span<const Bound>> { boundBoxes, boundButtons, boundSliders })
        for (const auto& [id, parameter] : kind)
        {
            auto& control = rig.control (id);
            rig.set (parameter, 0.7f);
            rig.parameter (parameter).addListener (&host);
            rig.editor->setHostContext (&host);
            const juce::MouseEvent drag (juce::Desktop::getInstance().getMainMouseSource(), { 5.0f, -60.0f },
                                         juce::ModifierKeys::rightButtonModifier, 0, 0, 0, 0, 0, &control, &control, {},
                                         { 5.0f, 5.0f }, {}, 1, true);
            const auto act = [&]
            {
                control.mouseDown (drag);
                control.mouseDrag (drag);
                control.mouseUp (drag);
                return std::exchange (host.heard, {}).isNotEmpty();
            };
            EXPECT_FALSE (act()) << id;
            EXPECT_EQ (host.asked, &rig.parameter (parameter)) << id;
            rig.editor->setHostContext (nullptr);
            EXPECT_EQ (act(), dynamic_cast<juce::Slider*> (&control) != nullptr) << id;
        }
}

struct Grids
{
    double pitchScale, pitchWheel, bend, timbreScale, timbreWheel;
    bool operator== (const Grids&) const = default;
};

Grids gridsOf (EditorRig& rig)
{
    return { rig.snapTo ("pitchScaleSlider"), rig.snapTo ("mainWheelSlider"), rig.processor.bendSteps,
             rig.snapTo ("timbreScaleSlider"), rig.snapTo ("timbreWheelSlider") };
}

// Controls that show one thing while the processor does another: after a restore, and in a window opened after it on a thread
// of the host's, where what an attachment has to say comes only later.
TEST (Binding, RestoredStateReachesTheOpenWindowAndTheNext)
{
    EditorRig source, rig;
    source.set (mainRange, 1.0f);
    source.set (timbRange, 5.0f);
    source.set (mainSnap, 0.45f);
    source.set (timbSnap, 0.5f);
    source.set (midiOptions, 0.0f);
    juce::MemoryBlock state;
    source.processor.getStateInformation (state);
    rig.processor.setStateInformation (state.getData(), static_cast<int> (state.getSize()));

    for (auto window = 1; window <= 2; ++window)
    {
        EXPECT_EQ (rig.textOf ("pitchSnapButton"), "Off");
        EXPECT_EQ (rig.textOf ("timbreSnapButton"), "On");
        EXPECT_EQ (rig.textOf ("midiModeButton"), "Multi");
        EXPECT_EQ (gridsOf (rig), (Grids { 4.0, 0.0, 0.0, 48.0, 48.0 }));
        EXPECT_FALSE (rig.processor.midiTransposeMode);

        rig.processor.outputGain = 0.7f;
        std::atomic<bool> isOpen { false };
        std::thread host (
            [&]
            {
                const juce::MessageManagerLock lock;
                rig.open();
                EXPECT_EQ (gridsOf (rig), (Grids { 4.0, 0.0, 0.0, 48.0, 48.0 })) << "before the attachments speak";
                isOpen = true;
            });
        EXPECT_TRUE (pumpMessagesUntil ([&] { return isOpen.load(); }));
        host.join();
        EXPECT_EQ (rig.processor.outputGain, 0.7f) << "Multi leaves the level alone";
    }
}

// The bend quantised to another grid than the wheel, or timbre's range leaking into the pitch bend. The scale must show the
// range even while the wheel moves freely.
TEST (Grids, FollowTheRangeAndTheSnapOfTheirSection)
{
    for (const auto& [index, steps] : { std::pair { 0, 2.0 }, std::pair { 1, 4.0 }, std::pair { 2, 6.0 },
                                        std::pair { 4, 24.0 }, std::pair { 5, 48.0 }, std::pair { -1, 2.0 } })
    {
        EditorRig rig (0, true);
        rig.choose ("pitchRangeBox", index);
        EXPECT_EQ (gridsOf (rig), (Grids { steps, steps, steps, 12.0, 12.0 })) << index;

        rig.toggle ("pitchSnapButton", false);
        EXPECT_EQ (rig.textOf ("pitchSnapButton"), "Off");
        EXPECT_EQ (gridsOf (rig), (Grids { steps, 0.0, 0.0, 12.0, 12.0 }));
        rig.choose ("pitchRangeBox", 3);
        EXPECT_EQ (gridsOf (rig), (Grids { 12.0, 0.0, 0.0, 12.0, 12.0 }));
        rig.toggle ("pitchSnapButton", true);

        rig.choose ("timbreRangeBox", index);
        EXPECT_EQ (gridsOf (rig), (Grids { 12.0, 12.0, 12.0, steps, steps })) << index;
        rig.toggle ("timbreSnapButton", false);
        EXPECT_EQ (rig.textOf ("timbreSnapButton"), "Off");
        EXPECT_EQ (gridsOf (rig), (Grids { 12.0, 12.0, 12.0, steps, 0.0 }));
    }
}

TEST (MidiModeButton, RestartsTheFadeInOnlyForSingle)
{
    EditorRig rig;
    EXPECT_EQ (rig.processor.outputGain, 0.0f) << "opening in Single fades the output in";
    rig.processor.outputGain = 0.8f;
    rig.toggle ("midiModeButton", false);
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Multi");
    EXPECT_FALSE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.8f);

    rig.toggle ("midiModeButton", true);
    EXPECT_EQ (rig.textOf ("midiModeButton"), "Single");
    EXPECT_TRUE (rig.processor.midiTransposeMode);
    EXPECT_EQ (rig.processor.outputGain, 0.0f);
}

// A knob that acts only after the next refresh, with another curve than the refresh has, or on the other wheel.
TEST (Knob, ShapesItsWheelAtOnce)
{
    for (const auto& [knob, value, field, expected] :
         { std::tuple { "GravitySlider", 0.8, &WheelRecord::pull, 1.31872e-3 },
           { "InertiaSlider", 0.8, &WheelRecord::acceleration, 8.5e-9 },
           { "SmoothSlider", 0.5, &WheelRecord::slewStep, 6.8988306e-6 } })
    {
        EditorRig rig; // at 44.1 kHz the time scale is 1
        rig.turn (juce::String ("pitch") + knob, value);
        EXPECT_NEAR (rig.processor.mainWheel.*field, expected, expected * 1.0e-6) << knob;
        EXPECT_NE (rig.processor.timbWheel.*field, rig.processor.mainWheel.*field) << knob;
        rig.turn (juce::String ("timbre") + knob, value);
        EXPECT_NEAR (rig.processor.timbWheel.*field, expected, expected * 1.0e-6) << knob;
    }
}

TEST (ReadOut, StaysTwentyFiveTicksFromTheLastMoveOrUntilAResize)
{
    EditorRig rig;
    rig.turn ("mainWheelSlider", 0.3); // the dial shows what a wheel does
    rig.turn ("timbreWheelSlider", 0.3);
    EXPECT_FALSE (rig.readOut().isVisible());

    rig.turn ("mixerSlider", 0.3);
    rig.tick (17);
    rig.turn ("mixerSlider", 0.4);
    rig.tick (24);
    EXPECT_TRUE (rig.readOut().isVisible());
    rig.tick (1);
    EXPECT_FALSE (rig.readOut().isVisible());

    rig.turn ("mixerSlider", 0.5);
    rig.editor->setSize (355, 400);
    EXPECT_FALSE (rig.readOut().isVisible());
}

// A host's NaN in a slider, which differs from itself and tells itself so for ever; or in a coefficient of a wheel, whose point
// never comes back.
TEST (Sliders, TakeNoNaN)
{
    EditorRig rig;

    for (const auto& bound : boundSliders)
    {
        rig.parameter (bound.parameter).setValueNotifyingHost (std::nanf (""));
        ASSERT_EQ (rig.control<juce::Slider> (bound.control).getValue(), 0.0) << bound.control;
    }

    rig.editor.reset();
    rig.open(); // where the attachments begin with it
    rig.play (silence (1000));
    EXPECT_TRUE (std::isfinite (rig.processor.mainWheel.point + rig.processor.timbWheel.point));
}
} // namespace
} // namespace tarvelline::test
