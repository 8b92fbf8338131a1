// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FlatLookAndFeel.h"

#include "widgets/Fonts.h"

namespace tarvelline
{
namespace
{
constexpr float minimumButtonText = 4.0f; // pixels
constexpr float minimumBoxText = 16.0f;   // pixels
constexpr float boxTextShare = 0.8f;      // of the box's height
constexpr float cornerSize = 6.0f;        // pixels
constexpr float focusedSaturation = 1.3f, unfocusedSaturation = 0.9f;
constexpr float disabledAlpha = 0.5f;
constexpr float pressedContrast = 0.1f;
constexpr float menuTextShare = 1.0f / 1.5f; // of the item's height
} // namespace

void FlatLookAndFeel::drawButtonBackground (juce::Graphics& g, juce::Button& button,
                                            const juce::Colour& backgroundColour, bool, bool isButtonDown)
{
    if (! isButtonDown) // the panel's own artwork is the button's body
        return;

    g.setColour (
        backgroundColour
            .withMultipliedSaturation (button.hasKeyboardFocus (true) ? focusedSaturation : unfocusedSaturation)
            .withMultipliedAlpha (button.isEnabled() ? 1.0f : disabledAlpha)
            .contrasting (pressedContrast));
    g.fillRoundedRectangle (button.getLocalBounds().toFloat().reduced (0.5f), cornerSize);
}

/** In the whole button, at its natural width: the framework would squeeze it between two margins. */
void FlatLookAndFeel::drawButtonText (juce::Graphics& g, juce::TextButton& button, bool, bool)
{
    const auto colourId =
        button.getToggleState() ? juce::TextButton::textColourOnId : juce::TextButton::textColourOffId;
    g.setFont (getTextButtonFont (button, button.getHeight()));
    g.setColour (button.findColour (colourId).withMultipliedAlpha (button.isEnabled() ? 1.0f : disabledAlpha));
    g.drawText (button.getButtonText(), button.getLocalBounds(), juce::Justification::centred, false);
}

juce::Font FlatLookAndFeel::getTextButtonFont (juce::TextButton&, int buttonHeight)
{
    return fontOfHeight (juce::jmax (minimumButtonText, static_cast<float> (buttonHeight) * textShare));
}

void FlatLookAndFeel::drawPopupMenuItem (juce::Graphics& g, const juce::Rectangle<int>& area, bool, bool isActive,
                                         bool isHighlighted, bool isTicked, bool, const juce::String& text,
                                         const juce::String&, const juce::Drawable*,
                                         const juce::Colour* textColourToUse)
{
    auto remaining = area.reduced (1);

    if (isHighlighted && isActive)
    {
        g.setColour (findColour (juce::PopupMenu::highlightedBackgroundColourId));
        g.fillRect (remaining);
        g.setColour (findColour (juce::PopupMenu::highlightedTextColourId));
    }
    else
    {
        const auto colour = textColourToUse != nullptr ? *textColourToUse : findColour (juce::PopupMenu::textColourId);
        g.setColour (colour.withMultipliedAlpha (isActive ? 1.0f : disabledAlpha));
    }

    const auto font = getPopupMenuFont().withHeight (static_cast<float> (remaining.getHeight()) * menuTextShare);
    const auto iconArea = remaining.removeFromLeft (juce::roundToInt (font.getHeight())).toFloat();
    g.setFont (font);

    if (isTicked)
    {
        const auto tick = getTickShape (1.0f);
        g.fillPath (tick, tick.getTransformToScaleToFit (iconArea.reduced (iconArea.getWidth() / 4.0f, 0.0f), true));
    }

    g.drawFittedText (text, remaining, juce::Justification::centred, 1);
}

juce::Font FlatLookAndFeel::getComboBoxFont (juce::ComboBox& box)
{
    return fontOfHeight (juce::jmax (minimumBoxText, static_cast<float> (box.getHeight()) * boxTextShare));
}

void FlatLookAndFeel::positionComboBoxText (juce::ComboBox& box, juce::Label& label)
{
    label.setBounds (box.getLocalBounds());
    label.setFont (getComboBoxFont (box));
}
} // namespace tarvelline
