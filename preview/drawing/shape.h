// SPDX-License-Identifier: MIT
// From text to glyphs in their places, in the order in which they are seen.
#pragma once

#include "preview/drawing/face.h"

#include <vector>

namespace preview {

struct PlacedGlyph {
    FT_UInt number = 0;
    FT_Pos x = 0; ///< of its origin from the line's start, in 1/64 of the face's pixels
    FT_Pos y = 0; ///< above the baseline
};

struct ShapedLine {
    std::vector<PlacedGlyph> glyphs;
    FT_Pos advance = 0;
    std::u32string missing; ///< each character that the face lacks, once
};

/// Throws FontError when a feature of `request` is not written as one.
[[nodiscard]] ShapedLine shape(const Face& face, const Request& request);

} // namespace preview
