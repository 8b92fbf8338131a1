// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/FollowDial.h"

#include "BinaryData.h"
#include "widgets/RotaryGeometry.h"

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

// Of the dial's height
constexpr float numberHeight = 1.0f / 6.0f;
constexpr float infoHeight = 0.0625f;

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
} // namespace

FollowDial::FollowDial()
    : ring (juce::ImageCache::getFromMemory (BinaryData::followWheel_png, BinaryData::followWheel_pngSize)),
      dialFont (juce::Typeface::createSystemTypefaceFor (BinaryData::scifi2k2_ttf, BinaryData::scifi2k2_ttfSize)),
      flashCounter (flashLength + flashDelay)
{
    setInterceptsMouseClicks (false, false);
    startTimer (pollMilliseconds);
}

FollowDial::~FollowDial() { stopTimer(); }

void FollowDial::setUp (TarvellineAudioProcessor& processor, int wheelIndex)
{
    wheel = wheelIndex == 0 ? &processor.mainWheel : &processor.timbWheel;
    infoText = formatName (processor.wrapperType) + " 64 bit  v." JucePlugin_VersionString;
}

void FollowDial::timerCallback()
{
    if (wheel == nullptr)
        return;

    // Before the first prepareToPlay the wheel has no span, and its point means nothing yet: the centre is shown.
    const double span = wheel->span;
    const auto newPosition = span > 0.0 ? static_cast<float> (wheel->point) : 0.5f;
    const auto newValue = span > 0.0 ? static_cast<float> (span) * (newPosition - 0.5f) : 0.0f;
    const auto infoLineShowed = infoLineShows();

    if (flashCounter > 0)
        --flashCounter;

    if (newPosition != position || newValue != shownValue || infoLineShowed || infoLineShows())
    {
        position = newPosition;
        shownValue = newValue;
        repaint();
    }
}

void FollowDial::paint (juce::Graphics& g)
{
    drawRing (g);
    drawNumber (g);

    if (infoLineShows())
        drawInfoLine (g);
}

/** The picture turns about its own centre and is stretched over the whole dial. */
void FollowDial::drawRing (juce::Graphics& g) const
{
    if (! ring.isValid())
        return;

    const auto size = ring.getBounds().toFloat();
    const auto angle = rotaryAngle (position, sweep.startAngleRadians, sweep.endAngleRadians);
    g.drawImageTransformed (ring, juce::AffineTransform::rotation (angle, size.getCentreX(), size.getCentreY())
                                      .scaled (static_cast<float> (getWidth()) / size.getWidth(),
                                               static_cast<float> (getHeight()) / size.getHeight()));
}

void FollowDial::drawNumber (juce::Graphics& g) const
{
    const auto bounds = getLocalBounds().toFloat();
    const auto height = bounds.getHeight();

    g.setFont (dialFont.withHeight (height * numberHeight));
    g.setColour (juce::Colour (textColour));
    g.setOpacity (numberOpacity);
    g.drawText (juce::String (shownValue, 2), bounds.withSizeKeepingCentre (bounds.getWidth() * 0.8f, height * 0.25f),
                juce::Justification::centred);
}

void FollowDial::drawInfoLine (juce::Graphics& g) const
{
    const auto bounds = getLocalBounds().toFloat();
    const auto height = bounds.getHeight();
    const auto lineHeight = height * infoHeight;

    g.setFont (dialFont.withHeight (lineHeight));
    g.setColour (juce::Colour (textColour));
    g.setOpacity (juce::jmin (static_cast<float> (flashCounter) * fadePerTick, infoOpacity));
    g.drawText (infoText,
                bounds.withSizeKeepingCentre (bounds.getWidth() * 2.0f / 3.0f, height * 0.25f)
                    .translated (0.0f, 1.5f * lineHeight),
                juce::Justification::centred);
}

bool FollowDial::infoLineShows() const noexcept { return flashCounter > 0 && flashCounter < flashLength; }
} // namespace tarvelline
