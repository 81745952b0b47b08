// SPDX-License-Identifier: MIT
// Measures a face's letters.
#pragma once

#include "faces/face.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <optional>

namespace faces {

struct Measured {
    std::optional<Measures> measures;
    bool monospaced = false; ///< letters and digits are all of one width
};

/// Loads a few letters of `face`, whose character map is set.
[[nodiscard]] Measured measure(FT_Face face);

} // namespace faces
