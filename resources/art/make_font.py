"""Writes the dial's display face from the house alphabet: make_font.py OUTPUT.ttf (needs python3-fonttools)."""
import sys

from fontTools.agl import UV2AGL
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen

import lettering

FAMILY, STYLE, VERSION = "Sci Fied 2002", "Regular", "Version 1.000"
COPYRIGHT = "Copyright 2024 The Tarvelline authors"
LICENSE = ("This Font Software is licensed under the SIL Open Font License, Version 1.1. "
           "This license is available with a FAQ at: https://openfontlicense.org")
# The line's middle is the capitals' middle, so that a number centred in the dial looks centred.
ASCENDER = lettering.CAP_HEIGHT + 190
DESCENDER = -190
STEM = 124                                           # heavy: its main use is a number at 40 % opacity
EPOCH = 3786912000                                   # 2024-01-01 in font time: the same file on every run


def draw(char):
    pen = TTGlyphPen(None)
    left = lettering.SIDE_BEARING if char != " " else 0
    move = lambda x, y: (round(x + left), round(y))
    for outline in lettering.glyph_outlines(char, STEM):
        pen.moveTo(move(*outline.start))
        for segment in outline.segments:
            if len(segment) == 2:
                pen.lineTo(move(*segment))
            else:
                pen.qCurveTo(move(*segment[:2]), move(*segment[2:]))
        pen.closePath()
    return pen.glyph()


def notdef():
    pen = TTGlyphPen(None)
    for x, y, step in ((60, 0, 1), (130, 70, -1)):
        corners = [(x, y), (x, 700 - y), (560 - x, 700 - y), (560 - x, y)][::step]
        pen.moveTo(corners[0])
        for corner in corners[1:]:
            pen.lineTo(corner)
        pen.closePath()
    return pen.glyph()


def main(path):
    chars = sorted(c for c in lettering.GLYPHS if c >= " ")
    assert chars == [chr(c) for c in range(0x20, 0x7F)], "the face holds exactly the printable ASCII"
    names = {c: UV2AGL[ord(c)] for c in chars}
    glyphs = {".notdef": notdef(), **{names[c]: draw(c) for c in chars}}
    font = FontBuilder(lettering.EM, isTTF=True)
    font.setupGlyphOrder(list(glyphs))
    font.setupCharacterMap({ord(c): names[c] for c in chars})
    font.setupGlyf(glyphs)
    metrics = {".notdef": 620, **{names[c]: round(lettering.advance(c)) for c in chars}}
    font.setupHorizontalMetrics({n: (w, getattr(glyphs[n], "xMin", 0)) for n, w in metrics.items()})
    font.setupHorizontalHeader(ascent=ASCENDER, descent=DESCENDER)
    font.setupNameTable({"copyright": COPYRIGHT, "familyName": FAMILY, "styleName": STYLE,
                         "uniqueFontIdentifier": f"{FAMILY} {STYLE} 1.000", "fullName": f"{FAMILY} {STYLE}",
                         "version": VERSION, "psName": "SciFied2002-Regular", "licenseDescription": LICENSE,
                         "licenseInfoURL": "https://openfontlicense.org"})
    font.setupOS2(sTypoAscender=ASCENDER, sTypoDescender=DESCENDER, sTypoLineGap=0, usWinAscent=ASCENDER,
                  usWinDescent=-DESCENDER, sxHeight=lettering.X_HEIGHT, sCapHeight=lettering.CAP_HEIGHT,
                  usWeightClass=500, usWidthClass=6, fsSelection=0x40, fsType=0, achVendID="VRNT")
    font.setupPost(isFixedPitch=0, underlinePosition=-110, underlineThickness=60)
    font.font["head"].created = font.font["head"].modified = EPOCH
    font.font.recalcTimestamp = False
    font.save(path)


if __name__ == "__main__":
    main(sys.argv[1])
