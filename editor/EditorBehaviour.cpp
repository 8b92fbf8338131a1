// SPDX-License-Identifier: GPL-3.0-or-later
// What the window does once it stands: ranges, snapping, MIDI mode, the value read-out and the timer.
#include "editor/HostKeyboard.h"
#include "editor/TarvellineAudioProcessorEditor.h"

#include <algorithm>

namespace tarvelline
{
namespace
{
constexpr int readOutTicks = 25;      // of the timer: 1.5 s
constexpr int readOutDistance = 12;   // design units from a knob's top to the read-out's centre, midway to the scale
constexpr double freeSemitones = 0.1; // of a wheel's step off its grid

/** The steps of a range box: its span in semitones. No selection counts as the first entry. */
double selectedSteps (const juce::ComboBox& box)
{
    constexpr auto lastIndex = static_cast<int> (wheelRangeTable.size()) - 1;
    return wheelRangeTable[static_cast<size_t> (juce::jlimit (0, lastIndex, box.getSelectedItemIndex()))];
}

/** Whether a mouse button is down over another program's window. Nothing else tells of it: the host keeps the keyboard, so
    this window does not lose it. */
bool isClickedElsewhere()
{
    return juce::ComponentPeer::getCurrentModifiersRealtime().isAnyMouseButtonDown()
           && juce::Desktop::getInstance().findComponentAt (juce::Desktop::getMousePosition()) == nullptr;
}
} // namespace

void TarvellineAudioProcessorEditor::comboBoxChanged (juce::ComboBox* box)
{
    if (box == &controls.pitchRangeBox)
    {
        pitchRangeSteps = selectedSteps (*box);
        applyPitchSnap (pitchRangeSteps);
        controls.pitchScaleSlider.repaint();
    }
    else if (box == &controls.timbreRangeBox)
    {
        timbreRangeSteps = selectedSteps (*box);
        applyTimbreSnap (timbreRangeSteps);
        controls.timbreScaleSlider.repaint();
    }
}

void TarvellineAudioProcessorEditor::applyPitchSnap (double steps)
{
    const auto grid = controls.pitchSnapButton.getToggleState() ? steps : 0.0;

    controls.pitchScaleSlider.snapTo = steps; // the scale shows the span even when snapping is off
    controls.mainWheelSlider.snapTo = grid;
    controls.mainWheelSlider.freeStep = freeSemitones / steps;
    processor.bendSteps = grid;
}

/** Unlike the pitch side's, this grid has no part in the processor: a pitch-bend moves the pitch alone. */
void TarvellineAudioProcessorEditor::applyTimbreSnap (double steps)
{
    controls.timbreScaleSlider.snapTo = steps;
    controls.timbreWheelSlider.snapTo = controls.timbreSnapButton.getToggleState() ? steps : 0.0;
    controls.timbreWheelSlider.freeStep = freeSemitones / steps;
}

void TarvellineAudioProcessorEditor::buttonClicked (juce::Button* button)
{
    const auto showOnOff = [] (juce::Button& snapButton)
    { snapButton.setButtonText (snapButton.getToggleState() ? "On" : "Off"); };

    if (button == &controls.sizeButton)
    {
        applySizeMode();
    }
    else if (button == &controls.pitchSnapButton)
    {
        showOnOff (*button);
        applyPitchSnap (pitchRangeSteps);
    }
    else if (button == &controls.timbreSnapButton)
    {
        showOnOff (*button);
        applyTimbreSnap (timbreRangeSteps);
    }
    else if (button == &controls.midiModeButton)
    {
        applyMidiMode();
    }
}

void TarvellineAudioProcessorEditor::applyMidiMode()
{
    const auto single = controls.midiModeButton.getToggleState();

    controls.midiModeButton.setButtonText (single ? "Single" : "Multi");
    processor.midiTransposeMode = single;

    if (single)
        processor.outputGain = 0.0f; // fades in again
}

void TarvellineAudioProcessorEditor::parentHierarchyChanged()
{
    applyDueSize();

    if (getPeer() != nullptr && processor.wrapperType != juce::AudioProcessor::wrapperType_Standalone)
        leaveKeyboardToHost();
}

void TarvellineAudioProcessorEditor::sliderValueChanged (juce::Slider* slider)
{
    for (auto& [knob, wheel, apply] : physicsKnobsOf (controls, processor))
        if (slider == &knob)
            apply (wheel, slider->getValue());

    if (slider != &controls.mainWheelSlider && slider != &controls.timbreWheelSlider)
        showValueAbove (*slider);
}

void TarvellineAudioProcessorEditor::showValueAbove (const juce::Slider& slider)
{
    auto& label = controls.valueLabel;
    label.setText (juce::String (slider.getValue(), 2), juce::dontSendNotification);
    label.setCentrePosition (slider.getX() + slider.getWidth() / 2,
                             slider.getY() - readOutDistance * designArea.getHeight() / designHeight);
    label.setVisible (true);
    valueLabelCountdown = readOutTicks;
}

/** The window itself is no stop on the way of the Tab key. */
void TarvellineAudioProcessorEditor::focusGained (FocusChangeType cause)
{
    if (cause == focusChangedByTabKey)
        moveKeyboardFocusToSibling (! juce::ModifierKeys::currentModifiers.isShiftDown());
}

int TarvellineAudioProcessorEditor::getControlParameterIndex (juce::Component& control)
{
    const auto indexIn = [&] (const auto& bindings)
    {
        for (const auto& binding : bindings)
            if (&binding.control == &control)
                return processor.parameters.getParameter (binding.parameter)->getParameterIndex();

        return -1;
    };

    return std::max ({ indexIn (sliderBindingsOf (controls)), indexIn (buttonBindingsOf (controls)),
                       indexIn (boxBindingsOf (controls)) });
}

void TarvellineAudioProcessorEditor::timerCallback()
{
    if (valueLabelCountdown > 0 && --valueLabelCountdown == 0)
        controls.valueLabel.setVisible (false);

    for (auto& binding : boxBindingsOf (controls))
        if (binding.control.isPopupActive() && isClickedElsewhere())
            binding.control.hidePopup();

    if (processor.voices.keysChanged)
    {
        controls.keyboard.repaint();
        processor.voices.keysChanged = false;
    }
}
} // namespace tarvelline
