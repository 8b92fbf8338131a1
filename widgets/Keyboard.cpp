// SPDX-License-Identifier: GPL-3.0-or-later
#include "widgets/Keyboard.h"

#include "BinaryData.h"
#include "widgets/SpokenValue.h"

#include <juce_audio_basics/juce_audio_basics.h>

namespace tarvelline
{
namespace
{
constexpr int whiteKeys = 28;
constexpr int shownKeys = 48; // the C above has a flag, but no place on the strip

// Of a white key's width
constexpr float whiteShapeWidth = 0.875f;
constexpr float blackShapeWidth = 0.5f;
constexpr float firstBlackKey = 0.5f;

constexpr float blackShapeHeight = 20.0f / 33.0f; // of the strip

struct WhiteKey
{
    int semitones; // to the next white key
    size_t shape;
};

struct BlackKey
{
    int semitones; // to the next black key
    float advance; // to it, in sixths of a white key's width
};

constexpr WhiteKey whiteOctave[] = { { 2, 0 }, { 2, 1 }, { 1, 2 }, { 2, 0 }, { 2, 3 }, { 2, 4 }, { 1, 2 } };
constexpr BlackKey blackOctave[] = { { 2, 8.0f }, { 3, 10.0f }, { 2, 7.0f }, { 2, 7.0f }, { 3, 10.0f } };

std::unique_ptr<juce::Drawable> shape (const char* data, int size)
{
    return juce::Drawable::createFromImageData (data, static_cast<size_t> (size));
}

void drawShape (juce::Graphics& g, const juce::Drawable* drawable, juce::Rectangle<float> area)
{
    if (drawable != nullptr)
        drawable->drawWithin (g, area, juce::RectanglePlacement::stretchToFit, 1.0f);
}
} // namespace

Keyboard::Keyboard()
    : whiteShapes { shape (BinaryData::KeyC_svg, BinaryData::KeyC_svgSize),
                    shape (BinaryData::KeyD_svg, BinaryData::KeyD_svgSize),
                    shape (BinaryData::KeyE_svg, BinaryData::KeyE_svgSize),
                    shape (BinaryData::KeyG_svg, BinaryData::KeyG_svgSize),
                    shape (BinaryData::KeyA_svg, BinaryData::KeyA_svgSize) },
      blackShape (shape (BinaryData::KeySharp_svg, BinaryData::KeySharp_svgSize))
{
    setInterceptsMouseClicks (false, false);
}

std::unique_ptr<juce::AccessibilityHandler> Keyboard::createAccessibilityHandler()
{
    return speakingHandler (*this,
                            [this]
                            {
                                juce::StringArray held;

                                for (auto key = 0; key < shownKeys; ++key)
                                    if (isLit (key))
                                        held.add (
                                            juce::MidiMessage::getMidiNoteName (lowestKeyNote + key, true, true, 4));

                                return held.isEmpty() ? juce::String ("none") : held.joinIntoString (" ");
                            });
}

void Keyboard::paint (juce::Graphics& g)
{
    const auto keyWidth = static_cast<float> (getWidth()) / whiteKeys;
    drawWhiteKeys (g, keyWidth);
    drawBlackKeys (g, keyWidth);
}

void Keyboard::drawWhiteKeys (juce::Graphics& g, float keyWidth) const
{
    const auto height = static_cast<float> (getHeight());
    auto x = 0.0f;

    for (size_t position = 0, key = 0; key < shownKeys; x += keyWidth)
    {
        const auto& white = whiteOctave[position++ % std::size (whiteOctave)];

        if (isLit (static_cast<int> (key)))
            drawShape (g, whiteShapes[white.shape].get(), { x, 0.0f, keyWidth * whiteShapeWidth, height });

        key += static_cast<size_t> (white.semitones);
    }
}

void Keyboard::drawBlackKeys (juce::Graphics& g, float keyWidth) const
{
    const auto height = static_cast<float> (getHeight()) * blackShapeHeight;
    auto x = keyWidth * firstBlackKey;

    for (size_t position = 0, key = 1; key < shownKeys;)
    {
        const auto& black = blackOctave[position++ % std::size (blackOctave)];

        if (isLit (static_cast<int> (key)))
            drawShape (g, blackShape.get(), { x, 0.0f, keyWidth * blackShapeWidth, height });

        key += static_cast<size_t> (black.semitones);
        x += black.advance / 6.0f * keyWidth;
    }
}

bool Keyboard::isLit (int key) const { return voices != nullptr && voices->keyLit[static_cast<size_t> (key)] != 0; }
} // namespace tarvelline
