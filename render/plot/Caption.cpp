// SPDX-License-Identifier: GPL-3.0-or-later
#include "render/plot/Caption.h"

#include "widgets/Fonts.h"

namespace tarvelline::render
{
namespace
{
/** The shape of a character's sign. */
juce::Path outlineOf (const juce::Font& font, juce::juce_wchar character)
{
    juce::Path outline;
    const auto glyph = glyphOf (*font.getTypefacePtr(), character);
    juce::PositionedGlyph (font, character, glyph, 0.0f, 0.0f, 0.0f, false).createPath (outline);
    return outline;
}

/** The characters of a text that a font has no sign for. */
juce::String unknownTo (const juce::Font& font, const juce::String& text)
{
    constexpr juce::juce_wchar noCharacter = 0xffff; // in no font: drawn with the sign for what is missing
    juce::String unknown;

    if (font.getTypefacePtr() != nullptr)
    {
        const auto missing = outlineOf (font, noCharacter);

        for (auto c = text.getCharPointer(); ! c.isEmpty(); ++c)
            if (! c.isWhitespace() && outlineOf (font, *c) == missing)
                unknown += *c;
    }

    return unknown;
}

juce::Font fontFor (const juce::String& text, const juce::Font& usual)
{
    auto best = usual;
    auto fewest = unknownTo (best, text).length();

    if (fewest > 0)
        for (const auto& name : juce::Font::findAllTypefaceNames())
        {
            const auto font = fontOfFamily (name, usual.getHeight());

            if (const auto unknown = unknownTo (font, text).length(); unknown < fewest)
            {
                best = font;
                fewest = unknown;
            }
        }

    return best;
}
} // namespace

void drawCaption (juce::Graphics& g, juce::Rectangle<float> area, const juce::String& before, const juce::String& name,
                  const juce::String& after)
{
    const auto font = fontFor (before + name + after, g.getCurrentFont());
    const auto unknown = unknownTo (font, name);
    const auto known = name.replaceCharacters (unknown, juce::String::repeatedString ("?", unknown.length()));
    auto shown = before + known + after;

    for (auto left = known.length() - 1; left > 1 && widthOf (font, shown) > area.getWidth(); --left)
        shown = before + known.substring (0, (left + 1) / 2) + juce::String::charToString (0x2026)
                + known.getLastCharacters (left / 2) + after;

    const juce::Graphics::ScopedSaveState withUsualFont (g);
    g.setFont (font);
    g.drawText (shown, area, juce::Justification::centredLeft, false);
}
} // namespace tarvelline::render
