// SPDX-License-Identifier: MIT
// The tables of a font but for its names: what it covers, what it can do, where it stands in its
// family.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_TRUETYPE_TABLES_H
#include <hb.h>
#include <memory>
#include <span>
#include <string_view>

namespace faces {

/// Looks at a font that is open; a Type 1 font has none of these tables but characters.
class FontTables {
public:
    /// `bytes` is the whole file, `number` the font's place in it.
    FontTables(FT_Face face, std::span<const std::uint8_t> bytes, long number);

    /// Whether it has layout tables that serve a script.
    [[nodiscard]] bool hasLayout() const;
    /// OS/2 sFamilyClass, its upper half; 0: not told.
    [[nodiscard]] unsigned familyClass() const;
    [[nodiscard]] Coverage coverage() const;
    /// Writes style, revision, foundry (where that is empty), embedding, PANOSE and features.
    void fill(Face& face) const;

private:
    struct HarfBuzzDeleter {
        void operator()(hb_face_t* face) const { hb_face_destroy(face); }
    };

    [[nodiscard]] Style style() const;

    FT_Face face_;
    std::unique_ptr<hb_face_t, HarfBuzzDeleter> tables_; ///< null for Type 1
    const TT_OS2* os2_ = nullptr;
    const TT_Header* head_ = nullptr;
};

} // namespace faces
