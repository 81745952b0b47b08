#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the sample font "Müller & Söhne Grotesk" out of small bitmaps.

Its family name has umlauts and an ampersand, which is what the sample needs it for. The result is
committed; run this only to change the font:  make_pixel_font.py OUTPUT.ttf  (needs fontTools).
"""
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen

FAMILY = "Müller & Söhne Grotesk"
STYLE = "Regular"
POSTSCRIPT_NAME = "MuellerUndSoehneGrotesk-Regular"
PIXEL = 100  # font units; a letter is 5 x 7 pixels on an em of 1000

ROWS = {
    "A": "01110 10001 10001 11111 10001 10001 10001", "B": "11110 10001 10001 11110 10001 10001 11110",
    "C": "01111 10000 10000 10000 10000 10000 01111", "D": "11110 10001 10001 10001 10001 10001 11110",
    "E": "11111 10000 10000 11110 10000 10000 11111", "F": "11111 10000 10000 11110 10000 10000 10000",
    "G": "01111 10000 10000 10011 10001 10001 01111", "H": "10001 10001 10001 11111 10001 10001 10001",
    "I": "01110 00100 00100 00100 00100 00100 01110", "J": "00111 00010 00010 00010 00010 10010 01100",
    "K": "10001 10010 10100 11000 10100 10010 10001", "L": "10000 10000 10000 10000 10000 10000 11111",
    "M": "10001 11011 10101 10101 10001 10001 10001", "N": "10001 11001 10101 10011 10001 10001 10001",
    "O": "01110 10001 10001 10001 10001 10001 01110", "P": "11110 10001 10001 11110 10000 10000 10000",
    "Q": "01110 10001 10001 10001 10101 10010 01101", "R": "11110 10001 10001 11110 10100 10010 10001",
    "S": "01111 10000 10000 01110 00001 00001 11110", "T": "11111 00100 00100 00100 00100 00100 00100",
    "U": "10001 10001 10001 10001 10001 10001 01110", "V": "10001 10001 10001 10001 10001 01010 00100",
    "W": "10001 10001 10001 10101 10101 11011 10001", "X": "10001 01010 00100 00100 00100 01010 10001",
    "Y": "10001 01010 00100 00100 00100 00100 00100", "Z": "11111 00001 00010 00100 01000 10000 11111",
    "0": "01110 10001 10011 10101 11001 10001 01110", "1": "00100 01100 00100 00100 00100 00100 01110",
    "2": "01110 10001 00001 00110 01000 10000 11111", "3": "11110 00001 00001 01110 00001 00001 11110",
    "4": "00010 00110 01010 10010 11111 00010 00010", "5": "11111 10000 11110 00001 00001 10001 01110",
    "6": "01110 10000 10000 11110 10001 10001 01110", "7": "11111 00001 00010 00100 01000 01000 01000",
    "8": "01110 10001 10001 01110 10001 10001 01110", "9": "01110 10001 10001 01111 00001 00001 01110",
    "&": "01100 10010 10100 01000 10101 10010 01101", "-": "00000 00000 00000 01110 00000 00000 00000",
    ".": "00000 00000 00000 00000 00000 01100 01100", ",": "00000 00000 00000 00000 01100 00100 01000",
    ":": "00000 01100 01100 00000 01100 01100 00000", "!": "00100 00100 00100 00100 00100 00000 00100",
    "ß": "01100 10010 10010 10110 10001 10001 10110", " ": "00000 00000 00000 00000 00000 00000 00000",
}
UMLAUTS = {"Ä": "A", "Ö": "O", "Ü": "U"}


def draw(rows, dots):
    pen = TTGlyphPen(None)

    def box(left, bottom, width):
        right, top = left + width, bottom + PIXEL
        pen.moveTo((left, bottom))
        for point in ((left, top), (right, top), (right, bottom)):
            pen.lineTo(point)
        pen.closePath()

    for number, row in enumerate(rows.split()):
        bottom = (6 - number) * PIXEL
        start = None
        for column, pixel in enumerate(row + "0"):
            if pixel == "1" and start is None:
                start = column
            elif pixel == "0" and start is not None:
                box(start * PIXEL, bottom, (column - start) * PIXEL)
                start = None
    if dots:
        box(1 * PIXEL, 8 * PIXEL, PIXEL)
        box(3 * PIXEL, 8 * PIXEL, PIXEL)
    return pen.glyph()


def main(output):
    glyphs, cmap = {".notdef": draw("11111 10001 10001 10001 10001 10001 11111", False)}, {}

    def add(character, rows, dots=False):
        name = f"uni{ord(character):04X}"
        glyphs[name] = draw(rows, dots)
        cmap[ord(character)] = name

    for character, rows in ROWS.items():
        add(character, rows)
        if character.isascii() and character.isalpha():
            cmap[ord(character.lower())] = f"uni{ord(character):04X}"
    for umlaut, base in UMLAUTS.items():
        add(umlaut, ROWS[base], dots=True)
        cmap[ord(umlaut.lower())] = f"uni{ord(umlaut):04X}"

    builder = FontBuilder(1000, isTTF=True)
    builder.setupGlyphOrder(list(glyphs))
    builder.setupCharacterMap(cmap)
    builder.setupGlyf(glyphs)
    builder.setupHorizontalMetrics({name: (600, 0) for name in glyphs})
    builder.setupHorizontalHeader(ascent=950, descent=-200)
    builder.setupNameTable({
        "copyright": "Copyright (c) 2026 The Glyphora plug-in authors. MIT License.",
        "familyName": FAMILY, "styleName": STYLE, "uniqueFontIdentifier": POSTSCRIPT_NAME,
        "fullName": FAMILY, "psName": POSTSCRIPT_NAME, "version": "Version 1.000",
    }, mac=False)
    builder.setupOS2(sTypoAscender=950, sTypoDescender=-200, usWinAscent=950, usWinDescent=200)
    builder.setupPost()
    builder.updateHead(created=3850000000, modified=3850000000)
    builder.font.recalcTimestamp = False
    builder.save(output)


if __name__ == "__main__":
    main(sys.argv[1])
