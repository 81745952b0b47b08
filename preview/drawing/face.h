// SPDX-License-Identifier: MIT
// A face of a font file, open at a size and at places on its axes.
#pragma once

#include "preview/fileidentity.h"
#include "preview/request.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include <hb.h>

#include <memory>
#include <stdexcept>

namespace preview {

/// "PATH: ..."
class FontError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

template <auto free>
struct Freer {
    template <typename T>
    void operator()(T* object) const {
        static_cast<void>(free(object));
    }
};
using Library = std::unique_ptr<std::remove_pointer_t<FT_Library>, Freer<FT_Done_FreeType>>;
using FaceHandle = std::unique_ptr<std::remove_pointer_t<FT_Face>, Freer<FT_Done_Face>>;
using ShapingFont = std::unique_ptr<hb_font_t, Freer<hb_font_destroy>>;
using ShapingBuffer = std::unique_ptr<hb_buffer_t, Freer<hb_buffer_destroy>>;

/// How glyphs are loaded for shaping and for drawing: their advances must be the same.
inline constexpr FT_Int32 loadFlags = FT_LOAD_NO_HINTING | FT_LOAD_COLOR;

class Face {
public:
    /// Reads the file that `request` names into memory: a mapped one that is cut short meanwhile
    /// would end the process. Throws FontError when it has no such face.
    Face(FT_Library library, const Request& request);

    /// Whether it is the face that `request` asks for, from the file as it is now.
    [[nodiscard]] bool isOf(const Request& request) const;
    /// Throws FontError when the face cannot take the size or the places.
    void set(const Request& request);

    [[nodiscard]] FT_Face freetype() const { return face_.get(); }
    [[nodiscard]] hb_font_t* shaping() const { return font_.get(); }
    /// What a glyph of this face is multiplied by: not 1 where it has pictures of fixed sizes.
    [[nodiscard]] double strikeScale() const { return strikeScale_; }

private:
    void setSize(const Request& request);
    void setAxes(const Request& request);

    std::string path_;
    std::uint32_t number_;
    FileIdentity identity_;
    std::string bytes_;
    FaceHandle face_;
    ShapingFont font_;
    double strikeScale_ = 1;
};

} // namespace preview
