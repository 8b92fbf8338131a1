// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"

#include <cmath>
#include <map>

namespace tarvelline::test
{
namespace
{
/** A renderer that notes every glyph on its way to the picture. */
class GlyphListener : public juce::LowLevelGraphicsSoftwareRenderer
{
public:
    using LowLevelGraphicsSoftwareRenderer::LowLevelGraphicsSoftwareRenderer;

    void drawGlyph (int glyph, const juce::AffineTransform& transform) override
    {
        const auto whole = stack->transform.getTransformWith (transform);
        note (characterFor (glyph), { whole.getTranslationX(), whole.getTranslationY() });
        LowLevelGraphicsSoftwareRenderer::drawGlyph (glyph, transform);
    }

    std::vector<DrawnText> texts;

private:
    void note (juce::String character, juce::Point<float> position)
    {
        constexpr auto mostBlanks = 3; // a wider gap parts two texts
        const auto& font = stack->font;
        const auto blanks =
            texts.empty()
                ? 0
                : static_cast<int> (std::lround ((position.x - texts.back().right) / font.getStringWidthFloat (" ")));

        if (texts.empty() || std::abs (texts.back().baseline - position.y) > 0.1f || blanks < 0 || blanks > mostBlanks
            || ! juce::approximatelyEqual (texts.back().height, font.getHeight()))
            texts.push_back ({ {},
                               position.x,
                               position.x,
                               position.y,
                               font.getHeight(),
                               font.getTypefacePtr()->getName(),
                               stack->fillType.colour });
        else
            texts.back().text += juce::String::repeatedString (" ", blanks);

        texts.back().text += character;
        texts.back().right = position.x + font.getStringWidthFloat (character);
    }

    juce::String characterFor (int glyph)
    {
        auto typeface = stack->font.getTypefacePtr();
        auto& characters = known[typeface.get()];

        if (characters.empty())
        {
            for (auto c = juce::juce_wchar { '~' }; c >= ' '; --c)
            {
                juce::Array<int> glyphs;
                juce::Array<float> offsets;
                typeface->getGlyphPositions (juce::String::charToString (c), glyphs, offsets);
                characters[glyphs.getFirst()] = juce::String::charToString (c);
            }
        }

        return characters[glyph];
    }

    std::map<juce::Typeface*, std::map<int, juce::String>> known;
};
} // namespace

std::vector<DrawnText> textsDrawnBy (int width, int height, const std::function<void (juce::Graphics&)>& draw)
{
    const juce::Image image (juce::Image::ARGB, width, height, true);
    GlyphListener listener (image);
    juce::Graphics g (listener);
    draw (g);
    return listener.texts;
}

std::vector<DrawnText> textsOf (juce::Component& component)
{
    return textsDrawnBy (component.getWidth(), component.getHeight(),
                         [&] (juce::Graphics& g) { component.paintEntireComponent (g, true); });
}

std::vector<juce::String> wordsOf (juce::Component& component)
{
    std::vector<juce::String> words;

    for (const auto& text : textsOf (component))
        words.push_back (text.text);

    return words;
}
} // namespace tarvelline::test
