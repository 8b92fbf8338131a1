// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/MidiVoices.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <array>
#include <memory>

namespace tarvelline
{
/** Lights the held notes on the panel's painted piano: four octaves, MIDI notes 36 to 83. Unlit keys are not drawn.

    It takes no mouse clicks and has no timer: the editor repaints it when the notes have changed. Message thread only;
    the key flags are read as they are. */
class Keyboard : public juce::Component
{
public:
    Keyboard();

    /** The flags to show; they must outlive the keyboard. */
    void setVoices (const MidiVoices& source) { voices = &source; }

    void paint (juce::Graphics&) override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

private:
    void drawWhiteKeys (juce::Graphics&, float keyWidth) const;
    void drawBlackKeys (juce::Graphics&, float keyWidth) const;
    bool isLit (int key) const;

    const MidiVoices* voices = nullptr;
    std::array<std::unique_ptr<juce::Drawable>, 5> whiteShapes; // C, D, E, G, A: F has C's notch, B has E's
    std::unique_ptr<juce::Drawable> blackShape;
};
} // namespace tarvelline
