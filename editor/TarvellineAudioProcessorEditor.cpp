// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/TarvellineAudioProcessorEditor.h"

#include "BinaryData.h"
#include "widgets/PuckRepaint.h"

#include <algorithm>
#include <utility>

namespace tarvelline
{
namespace
{
constexpr int timerMilliseconds = 60;

constexpr juce::uint32 pointerColour = 0xffffffff;
constexpr juce::uint32 tickColour = 0xff203040;
constexpr juce::uint32 numberColour = 0xfffaebd7;
constexpr juce::uint32 menuColour = 0xff04070b;
constexpr juce::uint32 menuHighlightColour = 0xff364e65;
constexpr juce::uint32 readOutColour = 0xc0101030;

juce::String formatName (juce::AudioProcessor::WrapperType type)
{
    switch (type)
    {
        case juce::AudioProcessor::wrapperType_VST: return "VST";
        case juce::AudioProcessor::wrapperType_VST3: return "VST3";
        case juce::AudioProcessor::wrapperType_AudioUnit: return "AU";
        case juce::AudioProcessor::wrapperType_AAX: return "AAX";
        case juce::AudioProcessor::wrapperType_AudioUnitv3:
        case juce::AudioProcessor::wrapperType_Standalone:
        case juce::AudioProcessor::wrapperType_Unity:
        case juce::AudioProcessor::wrapperType_LV2:
        case juce::AudioProcessor::wrapperType_Undefined: break;
    }

    return {};
}

/** Lets a slider that is attached to a parameter take no NaN, which a host may store there: one differs from itself, and the
    slider would tell itself of the change for ever, on the message thread. */
void refuseNaN (juce::Slider& slider)
{
    const auto held = [] (double start, double end, double value)
    { return value > start ? std::min<double> (static_cast<float> (value), end) : start; }; // a NaN is not above

    slider.setNormalisableRange ({ slider.getMinimum(), slider.getMaximum(), nullptr, nullptr, held });
}
} // namespace

TarvellineAudioProcessorEditor::TarvellineAudioProcessorEditor (TarvellineAudioProcessor& owner)
    : AudioProcessorEditor (owner), panel ([this] (float width) { return panelFor (width); }), processor (owner)
{
    chooseTypeface();
    showProcessorState();
    setLookColours();
    styleSliders();
    fillRangeBoxes();
    styleValueLabel();
    styleButtons();
    nameControls();
    listenToControls();
    attachParameters();
    speakValues();

    // By hand, since a button that has not moved tells nobody: texts, grids and modes as the parameters have them. In
    // transpose mode this restarts the output's fade-in.
    for (juce::Button* button : std::initializer_list<juce::Button*> {
             &controls.pitchSnapButton, &controls.midiModeButton, &controls.timbreSnapButton })
        buttonClicked (button);

    for (auto* control : zOrderOf (controls))
        addAndMakeVisible (control);

    setOpaque (true);

    setConstrainer (&dragConstrainer);
    setResizable (true, true);
    takeKeyboardByTabAlone();
    applySizeMode();
    openAtStoredHeight();
    startTimer (timerMilliseconds);
}

TarvellineAudioProcessorEditor::~TarvellineAudioProcessorEditor() { stopTimer(); }

/** All text is in the display face where the system has no font at all; it would not be drawn otherwise. */
void TarvellineAudioProcessorEditor::chooseTypeface()
{
    const auto displayFace = controls.pitchDial.getDialFont().getTypefacePtr();
    auto installed = juce::Font::findAllTypefaceNames();
    installed.removeString (displayFace->getName()); // from JUCE 8 on it is listed as well

    if (installed.isEmpty())
        juce::LookAndFeel::getDefaultLookAndFeel().setDefaultSansSerifTypeface (displayFace);
}

void TarvellineAudioProcessorEditor::showProcessorState()
{
    const auto info = formatName (processor.wrapperType) + " 64 bit  v." JucePlugin_VersionString;
    controls.pitchDial.follow (processor.mainWheel, info);
    controls.timbreDial.follow (processor.timbWheel, info);
    controls.pitchDial.setRotaryParameters (controls.mainWheelSlider.getRotaryParameters());
    controls.timbreDial.setRotaryParameters (controls.timbreWheelSlider.getRotaryParameters());
    controls.keyboard.setVoices (processor.voices);
}

void TarvellineAudioProcessorEditor::setLookColours()
{
    tickLook.setColour (juce::Slider::thumbColourId, juce::Colour (pointerColour));
    displayTickLook.setColour (juce::Slider::thumbColourId, juce::Colour (tickColour));
    displayTickLook.setColour (juce::Slider::textBoxHighlightColourId, juce::Colour (numberColour));
    mainLook.setColour (juce::PopupMenu::backgroundColourId, juce::Colour (menuColour));
    mainLook.setColour (juce::PopupMenu::highlightedBackgroundColourId, juce::Colour (menuHighlightColour));
    mainLook.setColour (juce::TextButton::buttonColourId, juce::Colours::transparentBlack);
    mainLook.setColour (juce::TextButton::buttonOnColourId, juce::Colours::transparentBlack);
}

void TarvellineAudioProcessorEditor::styleSliders()
{
    for (auto* slider : slidersOf (controls))
    {
        slider->setSliderStyle (juce::Slider::RotaryHorizontalVerticalDrag);
        slider->setTextBoxStyle (juce::Slider::NoTextBox, false, 0, 0);
        slider->setWantsKeyboardFocus (true);
        slider->setLookAndFeel (&tickLook);
    }

    for (auto* wheel : { &controls.mainWheelSlider, &controls.timbreWheelSlider })
    {
        wheel->setLookAndFeel (&mainRotaryLook);
        wheel->setCachedComponentImage (new PuckRepaint (*wheel)); // the wheel owns it
    }

    for (auto* scale : { &controls.pitchScaleSlider, &controls.timbreScaleSlider })
    {
        scale->setLookAndFeel (&displayTickLook);
        scale->setInterceptsMouseClicks (false, false);
        scale->setWantsKeyboardFocus (false);
        scale->setAccessible (false);
        scale->setBufferedToImage (true); // hundreds of ticks, under a dial that repaints 50 times a second
    }
}

void TarvellineAudioProcessorEditor::fillRangeBoxes()
{
    for (auto* box : { &controls.pitchRangeBox, &controls.timbreRangeBox })
    {
        auto itemId = 0;

        for (const auto semitones : wheelRangeTable)
            box->addItem (juce::String (semitones, 0), ++itemId);

        box->setJustificationType (juce::Justification::centred);
        box->setLookAndFeel (&mainLook);
    }
}

void TarvellineAudioProcessorEditor::styleValueLabel()
{
    auto& label = controls.valueLabel;
    label.setSize (32, 16);
    label.setFont (controls.pitchDial.getDialFont());
    label.setBorderSize ({}); // four characters need the whole width
    label.setJustificationType (juce::Justification::centred);
    label.setColour (juce::Label::textColourId, juce::Colour (readOutColour));
    label.setInterceptsMouseClicks (false, false);
    label.setAccessible (false); // the knob itself says its value
}

void TarvellineAudioProcessorEditor::styleButtons()
{
    for (auto& binding : buttonBindingsOf (controls))
    {
        binding.control.setClickingTogglesState (true);
        binding.control.setLookAndFeel (&mainLook);
    }

    controls.midiModeButton.setLookAndFeel (&midiOptionsLook);
}

void TarvellineAudioProcessorEditor::nameControls()
{
    for (auto& place : placementsOf (controls))
    {
        place.control.setComponentID (place.id);
        place.control.setTitle (place.title);
    }
}

void TarvellineAudioProcessorEditor::listenToControls()
{
    for (auto& binding : sliderBindingsOf (controls))
        binding.control.addListener (this);

    for (auto& binding : boxBindingsOf (controls))
        binding.control.addListener (this);

    for (auto& binding : buttonBindingsOf (controls))
        binding.control.addListener (this);
}

/** Sets each control itself before it is attached: in a host whose thread is not the framework's message thread an
    attachment's own first update comes only after this constructor. */
void TarvellineAudioProcessorEditor::attachParameters()
{
    auto& state = processor.parameters;

    for (auto& [slider, id] : sliderBindingsOf (controls))
    {
        slider.setValue (static_cast<double> (currentValue (state, id)), juce::sendNotificationSync);
        sliderAttachments.add (new juce::AudioProcessorValueTreeState::SliderAttachment (state, id, slider));
        refuseNaN (slider);
    }

    for (auto& [button, id] : buttonBindingsOf (controls))
    {
        button.setToggleState (currentValue (state, id) >= 0.5f, juce::sendNotificationSync);
        buttonAttachments.add (new juce::AudioProcessorValueTreeState::ButtonAttachment (state, id, button));
    }

    for (auto& [box, id] : boxBindingsOf (controls))
    {
        box.setSelectedItemIndex (juce::roundToInt (currentValue (state, id)), juce::sendNotificationSync);
        comboBoxAttachments.add (new juce::AudioProcessorValueTreeState::ComboBoxAttachment (state, id, box));
    }
}

/** To screen readers: knobs as their read-out shows them, wheels in the semitones of their scale. */
void TarvellineAudioProcessorEditor::speakValues()
{
    for (auto& binding : sliderBindingsOf (controls))
        binding.control.textFromValueFunction = [] (double value) { return juce::String (value, 2); };

    for (auto& [wheel, steps] : { std::pair<juce::Slider&, double&> { controls.mainWheelSlider, pitchRangeSteps },
                                  { controls.timbreWheelSlider, timbreRangeSteps } })
    {
        wheel.textFromValueFunction = [&span = steps] (double value)
        { return juce::String ((value - 0.5) * span, 2) + " semitones"; };
        wheel.valueFromTextFunction = [&span = steps] (const juce::String& text)
        { return text.getDoubleValue() / span + 0.5; };
    }
}

/** A control takes the keyboard from the window, which holds it while none does and the host lets the window have it. */
void TarvellineAudioProcessorEditor::takeKeyboardByTabAlone()
{
    setWantsKeyboardFocus (true);
    setMouseClickGrabsKeyboardFocus (false);

    for (auto* child : getChildren())
        child->setMouseClickGrabsKeyboardFocus (false);
}
} // namespace tarvelline
