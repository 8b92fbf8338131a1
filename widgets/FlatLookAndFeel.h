// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** A flat look on the painted panel: large text, centred in the whole of its control at its natural width, menus of one line
    an item, and buttons without a body until they are pressed. Message thread only. */
class FlatLookAndFeel : public juce::LookAndFeel_V4
{
public:
    void drawButtonBackground (juce::Graphics&, juce::Button&, const juce::Colour& backgroundColour,
                               bool isMouseOverButton, bool isButtonDown) override;
    void drawButtonText (juce::Graphics&, juce::TextButton&, bool isMouseOverButton, bool isButtonDown) override;
    juce::Font getTextButtonFont (juce::TextButton&, int buttonHeight) override;
    void drawPopupMenuItem (juce::Graphics&, const juce::Rectangle<int>& area, bool isSeparator, bool isActive,
                            bool isHighlighted, bool isTicked, bool hasSubMenu, const juce::String& text,
                            const juce::String& shortcutKeyText, const juce::Drawable* icon,
                            const juce::Colour* textColourToUse) override;
    juce::Font getComboBoxFont (juce::ComboBox&) override;
    void positionComboBoxText (juce::ComboBox&, juce::Label&) override;

protected:
    /** @param buttonTextShare  height of a button's text, of the button's height */
    explicit FlatLookAndFeel (float buttonTextShare) : textShare (buttonTextShare) {}

private:
    const float textShare;
};

/** The look of the snap and size buttons and of the range boxes. */
class TarvellineLookAndFeel : public FlatLookAndFeel
{
public:
    TarvellineLookAndFeel() : FlatLookAndFeel (0.8f) {}
};

/** The look of the MIDI mode button, whose words need half the height. */
class MidiOptionsLookAndFeel : public FlatLookAndFeel
{
public:
    MidiOptionsLookAndFeel() : FlatLookAndFeel (0.4f) {}
};
} // namespace tarvelline
