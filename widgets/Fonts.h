// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_graphics/juce_graphics.h>

/** Fonts and their measures, as the framework's releases before 8 and from 8 on have them. Text stands where it stands with
    the earlier ones: a typeface's metrics are those that it states for this system. Message thread only. */
namespace tarvelline
{
#if JUCE_MAJOR_VERSION >= 8

inline constexpr auto fontMetrics = juce::TypefaceMetricsKind::legacy;

/** The default typeface, so many pixels high. */
inline juce::Font fontOfHeight (float pixels) { return juce::FontOptions (pixels).withMetricsKind (fontMetrics); }

/** An installed typeface's plain style. @param family  its name; the default typeface if there is none */
inline juce::Font fontOfFamily (const juce::String& family, float pixels)
{
    return juce::FontOptions (family, pixels, juce::Font::plain).withMetricsKind (fontMetrics);
}

/** A typeface that was loaded, in the default height. */
inline juce::Font fontOf (const juce::Typeface::Ptr& typeface)
{
    return juce::FontOptions (typeface).withMetricsKind (fontMetrics);
}

/** The width of a line in pixels. */
inline float widthOf (const juce::Font& font, const juce::String& text)
{
    return juce::GlyphArrangement::getStringWidth (font, text);
}

/** The number of a character's sign, or that of the sign for what is missing. */
inline int glyphOf (juce::Typeface& typeface, juce::juce_wchar character)
{
    return static_cast<int> (typeface.getNominalGlyphForCodepoint (character).value_or (0));
}

#else

inline juce::Font fontOfHeight (float pixels) { return juce::Font (pixels); }

inline juce::Font fontOfFamily (const juce::String& family, float pixels)
{
    return juce::Font (family, pixels, juce::Font::plain);
}

inline juce::Font fontOf (const juce::Typeface::Ptr& typeface) { return juce::Font (typeface); }

inline float widthOf (const juce::Font& font, const juce::String& text) { return font.getStringWidthFloat (text); }

inline int glyphOf (juce::Typeface& typeface, juce::juce_wchar character)
{
    juce::Array<int> glyphs;
    juce::Array<float> offsets;
    typeface.getGlyphPositions (juce::String::charToString (character), glyphs, offsets);
    return glyphs.getFirst();
}

#endif
} // namespace tarvelline
