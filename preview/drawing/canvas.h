// SPDX-License-Identifier: MIT
// A picture while glyphs are put into it.
#pragma once

#include "preview/request.h"

#include <ft2build.h>
#include FT_FREETYPE_H

namespace preview {

class Canvas {
public:
    Canvas(PixelForm form, std::uint32_t width, std::uint32_t height);
    /// Lays `bitmap`, `scale` times its size, with its left upper corner at `x`, `y`. What is
    /// outside is cut.
    void add(const FT_Bitmap& bitmap, int x, int y, double scale);
    [[nodiscard]] Picture picture(std::int32_t baseline) &&;

private:
    void blend(std::size_t place, const unsigned (&pixel)[4]);

    Picture picture_;
};

} // namespace preview
