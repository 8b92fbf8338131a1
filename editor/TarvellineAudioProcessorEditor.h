// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "editor/ControlTables.h"
#include "editor/DragConstrainer.h"
#include "processor/TarvellineAudioProcessor.h"
#include "widgets/FlatLookAndFeel.h"
#include "widgets/MainRotaryDraw.h"
#include "widgets/RotaryDisplayTick.h"
#include "widgets/RotaryTick.h"
#include "widgets/StretchedPicture.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace tarvelline
{
/** The plug-in's window: a pitch section, and in full size a timbre section beside it, on one painted panel.

    Full size shows the whole design of 1024 x 576 units; half size shows its left half in half the width. The height is
    free from 258 to 576 pixels, the width follows from it and from the mode. In bounds of other proportions, which a host can
    force, the panel keeps its own and lies in the middle. What each control is bound to and where it lies
    stands in ControlTables.
    Message thread only. It writes some of the processor's shared fields directly; all of them are relaxed atomics. */
class TarvellineAudioProcessorEditor final : public juce::AudioProcessorEditor,
                                             private juce::Button::Listener,
                                             private juce::Slider::Listener,
                                             private juce::ComboBox::Listener,
                                             public juce::Timer
{
public:
    explicit TarvellineAudioProcessorEditor (TarvellineAudioProcessor&);
    ~TarvellineAudioProcessorEditor() override;

    void paint (juce::Graphics&) override;
    void resized() override;
    void focusGained (FocusChangeType) override;
    void parentHierarchyChanged() override;

    /** Hides the value read-out when its time is over and a menu when the host is clicked, and repaints the keyboard when notes
        have changed; every 60 ms. */
    void timerCallback() override;

    /** The parameter that a control is bound to, by its place in the host's list; -1 for none. */
    int getControlParameterIndex (juce::Component&) override;

private:
    // Construction (TarvellineAudioProcessorEditor.cpp)
    void chooseTypeface();
    void showProcessorState();
    void setLookColours();
    void styleSliders();
    void fillRangeBoxes();
    void styleValueLabel();
    void styleButtons();
    void nameControls();
    void listenToControls();
    void attachParameters();
    void speakValues();
    void takeKeyboardByTabAlone();

    // Size and places (EditorLayout.cpp)
    void openAtStoredHeight();
    void applySizeMode();
    void applyDueSize();
    int widthFor (int height) const noexcept;
    juce::Rectangle<int> placeOfDesign() const;
    juce::Image panelFor (float width) const;

    // Behaviour (EditorBehaviour.cpp)
    void comboBoxChanged (juce::ComboBox*) override;
    void buttonClicked (juce::Button*) override;
    void sliderValueChanged (juce::Slider*) override;
    void applyPitchSnap (double steps);
    void applyTimbreSnap (double steps);
    void applyMidiMode();
    void showValueAbove (const juce::Slider&);

    int sizeMode = 1;              // 1 = full, 2 = half: the divisor of the visible design width
    bool sizeIsDue = false;        // the size mode's, while there is no window on the screen to have it
    float aspectRatio = 1.77778f;  // window width over height
    double pitchRangeSteps = 12.0; // semitones from end to end, as the range box has it
    double timbreRangeSteps = 12.0;
    int valueLabelCountdown = 0; // timer ticks until the read-out is hidden

    DragConstrainer dragConstrainer;

    // Destroyed from the last to the first: what is attached to a control before it, and a look after those that have it.
    MainRotaryDraw mainRotaryLook;
    RotaryTick tickLook;
    RotaryDisplayTick displayTickLook;
    TarvellineLookAndFeel mainLook;
    MidiOptionsLookAndFeel midiOptionsLook;
    EditorControls controls;
    juce::OwnedArray<juce::AudioProcessorValueTreeState::SliderAttachment> sliderAttachments;
    juce::OwnedArray<juce::AudioProcessorValueTreeState::ComboBoxAttachment> comboBoxAttachments;
    juce::OwnedArray<juce::AudioProcessorValueTreeState::ButtonAttachment> buttonAttachments;

    StretchedPicture panel;          // as much of it as the window shows
    juce::Rectangle<int> designArea; // where the panel lies in the window
    TarvellineAudioProcessor& processor;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR (TarvellineAudioProcessorEditor)
};
} // namespace tarvelline
