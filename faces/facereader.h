// SPDX-License-Identifier: MIT
// Fills faces from FreeType's view of a font.
#pragma once

#include "faces/coverage.h"
#include "faces/face.h"
#include "faces/namedecoder.h"

#include <cstdint>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

namespace faces {

/// The technology that FreeType tells; nullopt: one that is not supported.
[[nodiscard]] std::optional<Technology> technologyOf(FT_Face face);

/// [one-thread] Reads the fonts of files and keeps what serves for the next one.
class FaceReader {
public:
    /// Throws std::bad_alloc.
    FaceReader();

    /// The faces of all fonts in a file: each font as it is, and a variable font's instances.
    /// nullopt: FreeType finds no font; none: no supported format. `fileName` names fonts that
    /// have no name.
    [[nodiscard]] std::optional<std::vector<Face>> read(std::span<const std::uint8_t> bytes,
                                                        const std::string& fileName);

private:
    void addFaces(std::vector<Face>& faces, FT_Face font, std::span<const std::uint8_t> bytes,
                  long number, const std::string& fileName);

    struct LibraryDeleter {
        void operator()(FT_Library library) const { FT_Done_FreeType(library); }
    };

    std::unique_ptr<std::remove_pointer_t<FT_Library>, LibraryDeleter> library_;
    NameDecoder decoder_;
    LanguageFinder languages_;
};

} // namespace faces
