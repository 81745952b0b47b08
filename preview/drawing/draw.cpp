// SPDX-License-Identifier: MIT
// From glyphs in their places to one picture.
#include "preview/drawing/draw.h"

#include "preview/drawing/canvas.h"
#include "preview/drawing/readable.h"

#include FT_GLYPH_H

#include <algorithm>
#include <cmath>

namespace preview {

namespace {

using GlyphHandle = std::unique_ptr<std::remove_pointer_t<FT_Glyph>, Freer<FT_Done_Glyph>>;

struct LoadedGlyph {
    GlyphHandle glyph;
    FT_Vector origin; ///< 1/64 of the face's pixels
};

/// In 1/64 pixel, y upwards.
using Box = FT_BBox;

std::vector<LoadedGlyph> load(const Face& face, const ShapedLine& line) {
    std::vector<LoadedGlyph> glyphs;
    for (const PlacedGlyph& placed : line.glyphs) {
        FT_Glyph glyph = nullptr;
        // A glyph that is broken stays empty: the others still tell what the face looks like.
        if (FT_Load_Glyph(face.freetype(), placed.number, loadFlags) == 0 &&
            FT_Get_Glyph(face.freetype()->glyph, &glyph) == 0) {
            glyphs.push_back({GlyphHandle(glyph), {placed.x, placed.y}});
        }
    }
    return glyphs;
}

bool isColour(const LoadedGlyph& loaded) {
    return loaded.glyph->format == FT_GLYPH_FORMAT_BITMAP &&
           reinterpret_cast<FT_BitmapGlyph>(loaded.glyph.get())->bitmap.pixel_mode ==
               FT_PIXEL_MODE_BGRA;
}

/// What the line takes: the face's own height and the text's width, and all ink around them.
Box boxOf(const Face& face, const ShapedLine& line, const std::vector<LoadedGlyph>& glyphs) {
    const FT_Size_Metrics& metrics = face.freetype()->size->metrics;
    Box box{0, std::min<FT_Pos>(metrics.descender, 0), std::max<FT_Pos>(line.advance, 0),
            std::max<FT_Pos>(metrics.ascender, 0)};
    for (const LoadedGlyph& loaded : glyphs) {
        Box ink{};
        FT_Glyph_Get_CBox(loaded.glyph.get(), FT_GLYPH_BBOX_UNSCALED, &ink);
        if (ink.xMin < ink.xMax && ink.yMin < ink.yMax) {
            box.xMin = std::min(box.xMin, ink.xMin + loaded.origin.x);
            box.xMax = std::max(box.xMax, ink.xMax + loaded.origin.x);
            box.yMin = std::min(box.yMin, ink.yMin + loaded.origin.y);
            box.yMax = std::max(box.yMax, ink.yMax + loaded.origin.y);
        }
    }
    return box;
}

/// The picture's place in whole device pixels: `left` may be negative, `top` is above the baseline.
struct Frame {
    int left = 0;
    int top = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

// A font may claim any height, so it is bounded by what letters can need, and the width by the
// area.
Frame frameOf(const Box& box, double strikeScale, double devicePixels) {
    const auto pixels = [&](FT_Pos value) { return static_cast<double>(value) / 64 * strikeScale; };
    const double tallest = devicePixels * 3;
    const double widest = static_cast<double>(maximumArea);
    const double top = std::ceil(std::min(pixels(box.yMax), tallest));
    const double bottom = std::floor(std::max(pixels(box.yMin), -tallest));
    const double left = std::floor(std::max(pixels(box.xMin), -tallest));
    const double right = std::ceil(std::min(pixels(box.xMax), widest));
    const double height = std::max(1.0, top - bottom);
    const double width = std::clamp(right - left, 1.0, std::floor(widest / height));
    return {static_cast<int>(left), static_cast<int>(top), static_cast<std::uint32_t>(width),
            static_cast<std::uint32_t>(height)};
}

void drawGlyph(Canvas& canvas, const LoadedGlyph& loaded, const Frame& frame, double strikeScale) {
    FT_Glyph glyph = loaded.glyph.get();
    if (glyph->format != FT_GLYPH_FORMAT_BITMAP) {
        FT_Vector fraction{loaded.origin.x & 63, loaded.origin.y & 63};
        if (FT_Glyph_To_Bitmap(&glyph, FT_RENDER_MODE_NORMAL, &fraction, 0) != 0) {
            return;
        }
        const GlyphHandle rendered(glyph);
        const auto* bitmap = reinterpret_cast<FT_BitmapGlyph>(glyph);
        canvas.add(bitmap->bitmap,
                   static_cast<int>(loaded.origin.x >> 6) + bitmap->left - frame.left,
                   frame.top - static_cast<int>(loaded.origin.y >> 6) - bitmap->top, 1);
        return;
    }
    const auto* bitmap = reinterpret_cast<FT_BitmapGlyph>(glyph);
    const double x = static_cast<double>(loaded.origin.x) / 64 + bitmap->left;
    const double y = static_cast<double>(loaded.origin.y) / 64 + bitmap->top;
    canvas.add(bitmap->bitmap, static_cast<int>(std::lround(x * strikeScale)) - frame.left,
               frame.top - static_cast<int>(std::lround(y * strikeScale)), strikeScale);
}

} // namespace

Drawer::Drawer() {
    FT_Library library = nullptr;
    if (FT_Init_FreeType(&library) != 0) {
        throw FontError("FreeType cannot be started");
    }
    library_.reset(library);
}

Answer Drawer::draw(const Request& request) {
    Answer answer;
    try {
        if (!face_ || !face_->isOf(request)) {
            face_.reset(); // before the next one takes memory
            face_.emplace(library_.get(), request);
        }
        face_->set(request);
        auto [text, line] = readable(*face_, request);
        const std::vector<LoadedGlyph> glyphs = load(*face_, line);
        const double scale = face_->strikeScale();
        const Frame frame =
            frameOf(boxOf(*face_, line, glyphs), scale, request.pixels * request.scale);
        const bool colour = std::any_of(glyphs.begin(), glyphs.end(), isColour);
        Canvas canvas(colour ? PixelForm::Colour : PixelForm::Grey, frame.width, frame.height);
        for (const LoadedGlyph& glyph : glyphs) {
            drawGlyph(canvas, glyph, frame, scale);
        }
        answer.picture = std::move(canvas).picture(frame.top);
        answer.missing = std::move(line.missing);
        answer.drawn = std::move(text);
    } catch (const FontError& problem) {
        answer.problem = problem.what();
    }
    return answer;
}

} // namespace preview
