// SPDX-License-Identifier: MIT
// The kinds of font files that a family may come in side by side.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <optional>
#include <string>

namespace manager {

/// What a container's files have in common. TrueType fonts with and without layout tables are of
/// one kind: makers add those to some styles of a family and not to others. The numbers are kept in
/// the index.
enum class FontFormat : std::uint8_t {
    Type1 = 0,
    TrueType = 1,
    PostScript = 2, ///< OpenType with PostScript outlines
    Collection = 3,
};

[[nodiscard]] FontFormat formatOf(faces::Technology technology);
/// By a file's first bytes, which need not be a font's; nullopt: it cannot be read.
[[nodiscard]] std::optional<FontFormat> formatOfFile(const std::string& path);

} // namespace manager
