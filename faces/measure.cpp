// SPDX-License-Identifier: MIT
// Widths come from all letters and digits, the rest from the outlines of a few.
#include "faces/measure.h"

#include "faces/shape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include FT_ADVANCES_H
#include <numbers>
#include <numeric>
#include <vector>

namespace faces {

namespace {

constexpr FT_Int32 loading = FT_LOAD_NO_SCALE | FT_LOAD_NO_BITMAP;

// How often each letter from a to z stands in 1,000 of English.
constexpr std::array<int, 26> frequencies = {82, 15, 28, 43, 127, 22, 20, 61, 70, 2,  8, 40, 24,
                                             67, 75, 19, 1,  60,  63, 91, 28, 10, 24, 2, 20, 1};

/// The mean of some advances, and between what they lie.
struct Widths {
    double sum = 0;
    double weight = 0;
    FT_Fixed least = 0;
    FT_Fixed greatest = 0;

    void add(FT_Fixed advance, double frequency) {
        least = weight == 0 ? advance : std::min(least, advance);
        greatest = weight == 0 ? advance : std::max(greatest, advance);
        sum += static_cast<double>(advance) * frequency;
        weight += frequency;
    }
    [[nodiscard]] double mean() const { return weight == 0 ? 0 : sum / weight; }
};

Widths widthsOf(FT_Face face, char first, char last) {
    Widths widths;
    for (char c = first; c <= last; ++c) {
        const FT_UInt glyph = FT_Get_Char_Index(face, static_cast<unsigned char>(c));
        FT_Fixed advance = 0;
        if (glyph != 0 && FT_Get_Advance(face, glyph, loading, &advance) == 0) {
            widths.add(advance, first == 'a' ? frequencies[static_cast<std::size_t>(c - 'a')] : 1);
        }
    }
    return widths;
}

std::optional<Shape> shapeOf(FT_Face face, char letter) {
    const FT_UInt glyph = FT_Get_Char_Index(face, static_cast<unsigned char>(letter));
    if (glyph == 0 || FT_Load_Glyph(face, glyph, loading) != 0 ||
        face->glyph->format != FT_GLYPH_FORMAT_OUTLINE) {
        return std::nullopt;
    }
    return Shape::of(face->glyph->outline);
}

double firstLength(const std::vector<Span>& spans) {
    return spans.empty() ? 0 : spans.front().length();
}

// The left stem of "H": its foot beyond the stem, and how far it leans.
void measureStem(const Shape& letter, Measures& measures) {
    const Span height = letter.verticalExtent();
    const auto at = [&](double part) {
        return letter.across(height.from + height.length() * part);
    };
    const auto foot = at(0.012);
    const auto low = at(0.25);
    const auto high = at(0.75);
    if (foot.empty() || low.empty() || high.empty()) {
        return;
    }
    measures.serif = std::max(0.0, (foot.front().length() - low.front().length()) / 2);
    const double lean = high.front().middle() - low.front().middle();
    measures.slant = std::atan2(lean, height.length() / 2) * 180 / std::numbers::pi;
    // Where the stem would stand on the line if it had no serif.
    const double stem = low.front().from - (high.front().from - low.front().from) / 2;
    const double reach = stem - foot.front().from;
    if (reach > height.length() / 50) {
        const double length = firstLength(letter.upright(foot.front().from + reach / 4));
        measures.serifThickness = length < height.length() / 3 ? length : 0; // else no serif's
    }
}

// The bow of "o": thin above and below, thick at the sides; or the other way round.
void measureBow(const Shape& letter, Measures& measures) {
    const Span width = letter.horizontalExtent();
    const Span height = letter.verticalExtent();
    const double side = firstLength(letter.across(height.middle()));
    const double bottom = firstLength(letter.upright(width.middle()));
    if (const double thickest = std::max(side, bottom); thickest > 0) {
        measures.contrast = std::min(side, bottom) / thickest;
    }
    if (const double box = width.length() * height.length(); box > 0) {
        measures.roundness = std::min(1.0, letter.area() / box);
    }
}

} // namespace

Measured measure(FT_Face face) {
    Measured result;
    if (!FT_IS_SCALABLE(face) || face->units_per_EM == 0) {
        return result;
    }
    const Widths small = widthsOf(face, 'a', 'z');
    const Widths capital = widthsOf(face, 'A', 'Z');
    const Widths digit = widthsOf(face, '0', '9');
    result.monospaced = small.weight > 1 && small.least == small.greatest &&
                        capital.least == small.least && capital.greatest == small.least &&
                        digit.least == small.least;
    const auto x = shapeOf(face, 'x');
    const auto o = shapeOf(face, 'o');
    const auto l = shapeOf(face, 'l');
    const auto d = shapeOf(face, 'd');
    const auto p = shapeOf(face, 'p');
    const auto capitalH = shapeOf(face, 'H');
    if (!x || !o || !l || !d || !p || !capitalH) {
        return result;
    }
    Measures measures;
    measures.xHeight = x->verticalExtent().to;
    measures.capitalHeight = capitalH->verticalExtent().to;
    measures.ascender = d->verticalExtent().to;
    measures.descender = -p->verticalExtent().from;
    measures.letterWidth = small.mean();
    measures.capitalWidth = capital.mean();
    measures.digitWidth = digit.mean();
    measures.stem = firstLength(l->across(measures.xHeight / 2));
    measureStem(*capitalH, measures);
    measureBow(*o, measures);
    const double em = face->units_per_EM;
    for (double* length :
         {&measures.xHeight, &measures.capitalHeight, &measures.ascender, &measures.descender,
          &measures.letterWidth, &measures.capitalWidth, &measures.digitWidth, &measures.stem,
          &measures.serif, &measures.serifThickness}) {
        *length = std::clamp(*length / em, -8.0, 8.0);
    }
    result.measures = measures;
    return result;
}

} // namespace faces
