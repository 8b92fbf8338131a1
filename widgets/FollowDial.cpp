// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FollowDial.h"

#include "BinaryData.h"
#include "widgets/Fonts.h"
#include "widgets/RotaryGeometry.h"
#include "widgets/SpokenValue.h"

namespace tarvelline
{
namespace
{
constexpr int pollMilliseconds = 20;
constexpr int flashLength = 300;     // ticks: the information line shows for 6 s ...
constexpr int flashDelay = 500;      // ticks: ... from 10 s after the dial was made
constexpr float fadePerTick = 0.02f; // so that the last 30 ticks fade
constexpr float infoOpacity = 0.6f;
constexpr float numberOpacity = 0.4f;
constexpr auto textColour = 0xfff5f5f5;

constexpr float pictureSize = 222.0f; // pixels: natural width and height of the ring's picture

/** Around the index mark in that picture, in its pixels; all it holds of the ring itself is transparent. */
const juce::Rectangle<int> markInPicture (105, 7, 12, 21);

juce::Rectangle<int> markIn (const juce::Image& picture)
{
    return markInPicture * juce::roundToInt (static_cast<float> (picture.getWidth()) / pictureSize);
}

// Of the dial's height
constexpr float numberHeight = 1.0f / 6.0f;
constexpr float infoHeight = 0.0625f;
} // namespace

FollowDial::FollowDial()
    : ring (BinaryData::followWheel_png, BinaryData::followWheel_pngSize, BinaryData::followWheel2x_png,
            BinaryData::followWheel2x_pngSize),
      face ([this] (float width) { return faceFor (width); }),
      dialFont (
          fontOf (juce::Typeface::createSystemTypefaceFor (BinaryData::scifi2k2_ttf, BinaryData::scifi2k2_ttfSize))),
      flashCounter (flashLength + flashDelay)
{
    setInterceptsMouseClicks (false, false);
    startTimer (pollMilliseconds);
}

FollowDial::~FollowDial() { stopTimer(); }

void FollowDial::follow (const WheelRecord& record, const juce::String& info)
{
    wheel = &record;
    infoText = info;
}

std::unique_ptr<juce::AccessibilityHandler> FollowDial::createAccessibilityHandler()
{
    return speakingHandler (*this, [this] { return numberText() + " semitones"; });
}

void FollowDial::timerCallback()
{
    if (wheel == nullptr)
        return;

    // Before the first prepareToPlay the wheel has no time scale, and its point means nothing yet, even if a range has been
    // chosen: the centre is shown.
    const auto newPosition = wheel->timeScale > 0.0 ? static_cast<float> (wheel->point) : 0.5f;
    const auto newValue = static_cast<float> (wheel->span) * (newPosition - 0.5f);
    const auto oldOpacity = infoLineOpacity();

    if (flashCounter > 0)
        --flashCounter;

    if (newPosition != position)
    {
        repaint (markArea());
        position = newPosition;
        repaint (markArea());
    }

    if (newValue != shownValue)
    {
        shownValue = newValue;
        repaint (numberArea());
    }

    if (infoLineOpacity() != oldOpacity)
        repaint (infoLineBox().getSmallestIntegerContainer());
}

void FollowDial::paint (juce::Graphics& g)
{
    drawRing (g);
    drawNumber (g);

    if (infoLineOpacity() > 0.0f)
        drawInfoLine (g);
}

void FollowDial::drawRing (juce::Graphics& g)
{
    face.draw (g, *this, getLocalBounds());

    const auto scale = g.getInternalContext().getPhysicalPixelScaleFactor();
    const auto& picture = ring.at (static_cast<float> (getWidth()) / pictureSize * scale);

    if (picture.isValid())
    {
        const auto mark = markIn (picture);
        g.drawImageTransformed (picture.getClippedImage (mark),
                                juce::AffineTransform::translation (mark.getPosition().toFloat())
                                    .followedBy (ring.toNatural (picture))
                                    .followedBy (ringTransform()));
    }
}

juce::Image FollowDial::faceFor (float width) const
{
    auto picture = ring.at (width / pictureSize).createCopy(); // others share it

    if (picture.isValid())
        picture.clear (markIn (picture));

    return picture;
}

void FollowDial::drawNumber (juce::Graphics& g) const
{
    g.setFont (dialFont.withHeight (static_cast<float> (getHeight()) * numberHeight));
    g.setColour (juce::Colour (textColour));
    g.setOpacity (numberOpacity);
    g.drawText (numberText(), numberBox(), juce::Justification::centred);
}

juce::String FollowDial::numberText() const
{
    const juce::String text (shownValue, 2);
    return text == "-0.00" ? "0.00" : text;
}

void FollowDial::drawInfoLine (juce::Graphics& g) const
{
    g.setFont (dialFont.withHeight (static_cast<float> (getHeight()) * infoHeight));
    g.setColour (juce::Colour (textColour));
    g.setOpacity (infoLineOpacity());
    g.drawText (infoText, infoLineBox(), juce::Justification::centred);
}

/** 0 while the line does not show. */
float FollowDial::infoLineOpacity() const noexcept
{
    return flashCounter < flashLength ? juce::jmin (static_cast<float> (flashCounter) * fadePerTick, infoOpacity)
                                      : 0.0f;
}

/** The picture turns about its own centre and is stretched over the whole dial. */
juce::AffineTransform FollowDial::ringTransform() const
{
    const auto angle = rotaryAngle (position, sweep.startAngleRadians, sweep.endAngleRadians);
    return juce::AffineTransform::rotation (angle, pictureSize / 2.0f, pictureSize / 2.0f)
        .scaled (static_cast<float> (getWidth()) / pictureSize, static_cast<float> (getHeight()) / pictureSize);
}

/** What the index mark covers now. */
juce::Rectangle<int> FollowDial::markArea() const
{
    return markInPicture.toFloat().transformedBy (ringTransform()).getSmallestIntegerContainer().expanded (1);
}

juce::Rectangle<float> FollowDial::numberBox() const
{
    const auto bounds = getLocalBounds().toFloat();
    return bounds.withSizeKeepingCentre (bounds.getWidth() * 0.8f, bounds.getHeight() * 0.25f);
}

/** What the widest number covers: a swing while a far note transposes. */
juce::Rectangle<int> FollowDial::numberArea() const
{
    const auto font = dialFont.withHeight (static_cast<float> (getHeight()) * numberHeight);
    return numberBox()
        .withSizeKeepingCentre (widthOf (font, "-100.00"), font.getHeight())
        .getSmallestIntegerContainer()
        .expanded (1);
}

juce::Rectangle<float> FollowDial::infoLineBox() const
{
    const auto bounds = getLocalBounds().toFloat();
    return bounds.withSizeKeepingCentre (bounds.getWidth() * 2.0f / 3.0f, bounds.getHeight() * 0.25f)
        .translated (0.0f, 1.5f * bounds.getHeight() * infoHeight);
}
} // namespace tarvelline
