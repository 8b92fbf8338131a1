// SPDX-License-Identifier: GPL-3.0-or-later
// The window's size, what lies where in it, and the panel behind.
#include "editor/TarvellineAudioProcessorEditor.h"

#include "BinaryData.h"

#include <cstdlib>
#include <utility>

namespace tarvelline
{
namespace
{
constexpr int minimumHeight = 258;               // pixels
constexpr float fullAspectRatio = 1.77778f;      // a little above 16 / 9: truncated widths come out whole, 288 -> 512
constexpr juce::uint32 panelColour = 0xff728497; // of its ground
} // namespace

void TarvellineAudioProcessorEditor::openAtStoredHeight()
{
    const int stored = processor.uiHeight;
    const auto height = juce::jlimit (minimumHeight, designHeight, stored != 0 ? stored : designHeight / 2);

    dragConstrainer.setSizeLimits (1, minimumHeight, designWidth, designHeight); // the ratio is what limits the width
    setSize (widthFor (height), height);
    sizeIsDue = false;
}

void TarvellineAudioProcessorEditor::applySizeMode()
{
    sizeMode = controls.sizeButton.getToggleState() ? 1 : 2;
    aspectRatio = fullAspectRatio / static_cast<float> (sizeMode);
    getConstrainer()->setFixedAspectRatio (static_cast<double> (aspectRatio));

    // What lies outside the window is out of reach of the Tab key and of screen readers too.
    const auto shownWidth = designWidth / sizeMode;

    for (auto& place : placementsOf (controls))
        place.control.setVisible (place.bounds.getX() < static_cast<float> (shownWidth));

    sizeIsDue = true;
    applyDueSize();
}

/** Only on the screen: until the host has attached its event loop to the window this may be a thread of the framework's, and
    no host expects to be asked for a size on one. */
void TarvellineAudioProcessorEditor::applyDueSize()
{
    if (sizeIsDue && getPeer() != nullptr)
    {
        sizeIsDue = false;
        setBounds (getX(), getY(), widthFor (getHeight()), getHeight());
        resized();
    }
}

int TarvellineAudioProcessorEditor::widthFor (int height) const noexcept
{
    return static_cast<int> (static_cast<float> (height) * aspectRatio);
}

/** The whole window where its proportions are right, to the pixel by which hosts round; else the largest place amid it that
    has them. */
juce::Rectangle<int> TarvellineAudioProcessorEditor::placeOfDesign() const
{
    const auto window = getLocalBounds();

    if (std::abs (getWidth() - widthFor (getHeight())) <= 1)
        return window;

    const auto height = juce::jmin (getHeight(), juce::roundToInt (static_cast<float> (getWidth()) / aspectRatio));
    return window.withSizeKeepingCentre (widthFor (height), height);
}

void TarvellineAudioProcessorEditor::resized()
{
    designArea = placeOfDesign();
    const auto scaleX =
        static_cast<float> (designArea.getWidth()) / static_cast<float> (designWidth) * static_cast<float> (sizeMode);
    const auto scaleY = static_cast<float> (designArea.getHeight()) / static_cast<float> (designHeight);

    for (auto& [control, bounds, id, title] : placementsOf (controls))
        control.setBounds (juce::Rectangle<int> (juce::roundToInt (scaleX * bounds.getX()),
                                                 juce::roundToInt (scaleY * bounds.getY()),
                                                 juce::roundToInt (scaleX * bounds.getWidth()),
                                                 juce::roundToInt (scaleY * bounds.getHeight()))
                           + designArea.getPosition());

    if (isVisible()) // not while the window is still being made
        processor.uiHeight = getHeight();

    controls.valueLabel.setVisible (false);
}

void TarvellineAudioProcessorEditor::paint (juce::Graphics& g)
{
    if (designArea != getLocalBounds())
        g.fillAll (juce::Colour (panelColour));

    panel.draw (g, *this, designArea);
}

/** @param width  of what the window shows, in pixels of the screen */
juce::Image TarvellineAudioProcessorEditor::panelFor (float width) const
{
    constexpr auto largestSmall = 0.75f; // of the design's size: below, lettering for small windows is easier to read
    const auto scale = width * static_cast<float> (sizeMode) / static_cast<float> (designWidth);
    const auto [data, size] =
        scale <= largestSmall ? std::pair (BinaryData::backgroundSmall_png, BinaryData::backgroundSmall_pngSize)
        : scale <= 1.0f       ? std::pair (BinaryData::background_png, BinaryData::background_pngSize)
                              : std::pair (BinaryData::background2x_png, BinaryData::background2x_pngSize);
    const auto whole = juce::ImageCache::getFromMemory (data, size);
    return whole.getClippedImage ({ whole.getWidth() / sizeMode, whole.getHeight() });
}
} // namespace tarvelline
