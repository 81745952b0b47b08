// SPDX-License-Identifier: MIT
// Putting FreeType's forms of bitmaps over each other, smaller where a font has one large size.
#include "preview/drawing/canvas.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace preview {

namespace {

constexpr unsigned alpha = 3;

/// Adds one pixel, as red, green, blue and alpha multiplied by alpha, to `sum`.
void addPixel(const FT_Bitmap& bitmap, unsigned x, unsigned y, unsigned (&sum)[4]) {
    const unsigned char* const row =
        bitmap.buffer + (bitmap.pitch >= 0 ? std::ptrdiff_t{y}
                                           : std::ptrdiff_t{y} - std::ptrdiff_t{bitmap.rows} + 1) *
                            bitmap.pitch;
    switch (bitmap.pixel_mode) {
    case FT_PIXEL_MODE_BGRA:
        for (unsigned channel = 0; channel < 3; ++channel) {
            sum[channel] += row[4 * x + 2 - channel];
        }
        sum[alpha] += row[4 * x + alpha];
        break;
    case FT_PIXEL_MODE_GRAY:
        sum[alpha] += row[x];
        break;
    case FT_PIXEL_MODE_MONO:
        sum[alpha] += ((row[x / 8] >> (7 - x % 8)) & 1U) * 255;
        break;
    default: // nothing that fonts in use have
        break;
    }
}

struct Span {
    unsigned begin;
    unsigned end;
};

/// The pixels of a bitmap that the pixel `place` of its scaled picture shows, one at least.
Span sourceOf(unsigned place, double scale, unsigned size) {
    const auto begin = static_cast<unsigned>(std::min<double>(size - 1, std::floor(place / scale)));
    const auto end = static_cast<unsigned>(std::min<double>(size, std::ceil((place + 1) / scale)));
    return {begin, std::max(end, begin + 1)};
}

} // namespace

Canvas::Canvas(PixelForm form, std::uint32_t width, std::uint32_t height) {
    picture_.form = form;
    picture_.width = width;
    picture_.height = height;
    picture_.pixels.assign(std::size_t{width} * height * (form == PixelForm::Grey ? 1 : 4), '\0');
}

void Canvas::add(const FT_Bitmap& bitmap, int x, int y, double scale) {
    const auto scaled = [scale](unsigned size) {
        return static_cast<int>(std::min(std::ceil(size * scale), 32767.0));
    };
    const int width = bitmap.width == 0 ? 0 : scaled(bitmap.width);
    const int height = bitmap.rows == 0 ? 0 : scaled(bitmap.rows);
    // In 64 bits: a hostile font's places need not fit.
    const auto clip = [](std::int64_t from, std::int64_t size, std::int64_t limit) {
        return std::pair{std::clamp<std::int64_t>(-from, 0, size),
                         std::clamp<std::int64_t>(limit - from, 0, size)};
    };
    const auto [top, bottom] = clip(y, height, picture_.height);
    const auto [left, right] = clip(x, width, picture_.width);
    for (std::int64_t row = top; row < bottom; ++row) {
        const Span rows = sourceOf(static_cast<unsigned>(row), scale, bitmap.rows);
        for (std::int64_t column = left; column < right; ++column) {
            const Span columns = sourceOf(static_cast<unsigned>(column), scale, bitmap.width);
            unsigned sum[4] = {};
            for (unsigned j = rows.begin; j < rows.end; ++j) {
                for (unsigned i = columns.begin; i < columns.end; ++i) {
                    addPixel(bitmap, i, j, sum);
                }
            }
            const unsigned count = (rows.end - rows.begin) * (columns.end - columns.begin);
            for (unsigned& channel : sum) {
                channel /= count;
            }
            blend(static_cast<std::size_t>((y + row) * picture_.width + x + column), sum);
        }
    }
}

void Canvas::blend(std::size_t place, const unsigned (&pixel)[4]) {
    const auto over = [&](char& below, unsigned above) {
        const unsigned shown = static_cast<unsigned char>(below) * (255 - pixel[alpha]) / 255;
        below = static_cast<char>(std::min(255U, shown + above));
    };
    if (picture_.form == PixelForm::Grey) {
        over(picture_.pixels[place], pixel[alpha]);
        return;
    }
    for (unsigned channel = 0; channel < 4; ++channel) {
        over(picture_.pixels[place * 4 + channel], pixel[channel]);
    }
}

Picture Canvas::picture(std::int32_t baseline) && {
    picture_.baseline = baseline;
    return std::move(picture_);
}

} // namespace preview
