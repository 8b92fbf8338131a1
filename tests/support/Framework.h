// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

// What the tests use of the framework's inner parts, which its releases before 8 and from 8 on have in other places.

#if JUCE_MAJOR_VERSION >= 8
namespace juce::detail
#else
namespace juce
#endif
{
// The framework's own Linux wrapper declares it like this: modal loops are off, and this is the loop's inner step.
bool dispatchNextMessageOnSystemQueue (bool returnIfNoPendingMessages);
} // namespace juce

namespace tarvelline::test
{
#if JUCE_MAJOR_VERSION >= 8
using juce::detail::dispatchNextMessageOnSystemQueue;
#else
using juce::dispatchNextMessageOnSystemQueue;
#endif

/** A renderer that tells of every glyph, and draws none. Of blanks only some releases tell. */
class GlyphRenderer : public juce::LowLevelGraphicsSoftwareRenderer
{
public:
    using LowLevelGraphicsSoftwareRenderer::LowLevelGraphicsSoftwareRenderer;

    /** @param transform  from the glyph's origin to where it would be drawn, within the component */
    virtual void glyphDrawn (int glyph, const juce::AffineTransform& transform) = 0;

#if JUCE_MAJOR_VERSION >= 8
    void drawGlyphs (juce::Span<const juce::uint16> glyphs, juce::Span<const juce::Point<float>> positions,
                     const juce::AffineTransform& transform) override
    {
        for (std::size_t i = 0; i < glyphs.size(); ++i)
            glyphDrawn (glyphs[i], juce::AffineTransform::translation (positions[i]).followedBy (transform));
    }
#else
    void drawGlyph (int glyph, const juce::AffineTransform& transform) override { glyphDrawn (glyph, transform); }
#endif
};
} // namespace tarvelline::test
