// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/DrawnText.h"

#include "tests/support/Framework.h"
#include "widgets/Fonts.h"

#include <cmath>

namespace tarvelline::test
{
namespace
{
/** A renderer that notes every glyph on its way to the picture, and keeps where that is and the colour: not every release
    of the framework tells. */
class GlyphListener : public GlyphRenderer
{
public:
    using GlyphRenderer::GlyphRenderer;

    void setOrigin (juce::Point<int> origin) override
    {
        addTransform (juce::AffineTransform::translation (origin.toFloat()));
    }

    void addTransform (const juce::AffineTransform& transform) override
    {
        GlyphRenderer::addTransform (transform);
        states.back().toPicture = transform.followedBy (states.back().toPicture);
    }

    void setFill (const juce::FillType& fill) override
    {
        GlyphRenderer::setFill (fill);
        states.back().colour = fill.colour;
    }

    void setOpacity (float opacity) override { setFill (states.back().colour.withAlpha (opacity)); }

    void saveState() override
    {
        GlyphRenderer::saveState();
        states.push_back (states.back());
    }

    void restoreState() override
    {
        GlyphRenderer::restoreState();
        states.pop_back();
    }

    void glyphDrawn (int glyph, const juce::AffineTransform& transform) override
    {
        constexpr auto mostBlanks = 3.0f; // a wider gap parts two texts
        const auto& font = getFont();
        const auto characters = charactersFor (glyph);

        if (characters == " ")
            return;

        const auto position = juce::Point<float>().transformedBy (transform.followedBy (states.back().toPicture));
        const auto blanks =
            texts.empty() ? -1.0f : std::round ((position.x - texts.back().right) / widthOf (font, " "));

        if (blanks < 0.0f || blanks > mostBlanks || std::abs (texts.back().baseline - position.y) > 0.1f
            || ! juce::approximatelyEqual (texts.back().height, font.getHeight()))
            texts.push_back ({ {},
                               position.x,
                               position.x,
                               position.y,
                               font.getHeight(),
                               font.getHorizontalScale(),
                               font.getTypefacePtr()->getName(),
                               states.back().colour });
        else
            texts.back().text += juce::String::repeatedString (" ", static_cast<int> (blanks));

        texts.back().text += characters;
        texts.back().right = position.x + widthOf (font, characters);
    }

    std::vector<DrawnText> texts;

private:
    struct State
    {
        juce::AffineTransform toPicture;
        juce::Colour colour = juce::Colours::black;
    };

    juce::String charactersFor (int glyph)
    {
        constexpr auto ligature = juce::juce_wchar { 0xfb00 }; // of two letters f
        auto& typeface = *getFont().getTypefacePtr();

        for (auto c = juce::juce_wchar { ' ' }; c <= '~'; ++c)
            if (glyphOf (typeface, c) == glyph)
                return juce::String::charToString (c);

        return glyphOf (typeface, ligature) == glyph ? "ff" : "?";
    }

    std::vector<State> states { {} };
};
} // namespace

std::vector<DrawnText> textsOf (juce::Component& component)
{
    GlyphListener listener ({ juce::Image::ARGB, component.getWidth(), component.getHeight(), true });
    juce::Graphics g (listener);
    component.paintEntireComponent (g, true);
    return listener.texts;
}
} // namespace tarvelline::test
