// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "processor/WheelModel.h"
#include "widgets/ScalablePicture.h"
#include "widgets/StretchedPicture.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace tarvelline
{
/** Shows where a wheel's sound is now: a ring that turns with the wheel's moving point, and the shift in semitones.

    All that shows of the turning is the ring's index mark: the rest of the picture is the same at every angle. So only the
    mark is drawn turned, and while the wheel moves only the mark and the number are painted anew.

    Some seconds after it was made it shows, once, a line about the plug-in. It takes no mouse clicks.
    Message thread only; the wheel's state is polled every 20 ms. */
class FollowDial : public juce::Component, private juce::Timer
{
public:
    FollowDial();
    ~FollowDial() override;

    /** @param record  the wheel to follow; it must outlive the dial
        @param info    the line to show once */
    void follow (const WheelRecord& record, const juce::String& info);

    /** The wheel slider's sweep, so that ring and puck turn alike. */
    void setRotaryParameters (juce::Slider::RotaryParameters newSweep) { sweep = newSweep; }

    /** The display face, at its default height. */
    const juce::Font& getDialFont() const noexcept { return dialFont; }

    void paint (juce::Graphics&) override;
    std::unique_ptr<juce::AccessibilityHandler> createAccessibilityHandler() override;

private:
    void timerCallback() override;
    void drawRing (juce::Graphics&);
    void drawNumber (juce::Graphics&) const;
    void drawInfoLine (juce::Graphics&) const;
    float infoLineOpacity() const noexcept;
    juce::Image faceFor (float width) const;
    juce::String numberText() const;
    juce::AffineTransform ringTransform() const;
    juce::Rectangle<int> markArea() const;
    juce::Rectangle<float> numberBox() const;
    juce::Rectangle<int> numberArea() const;
    juce::Rectangle<float> infoLineBox() const;

    const WheelRecord* wheel = nullptr;
    float position = 0.5f;   // of the wheel's moving point, 0..1
    float shownValue = 0.0f; // semitones
    juce::Slider::RotaryParameters sweep {};
    ScalablePicture ring;
    StretchedPicture face; // the ring without its index mark
    juce::Font dialFont;
    juce::String infoText;
    int flashCounter; // timer ticks until the information line has come and gone
};
} // namespace tarvelline
