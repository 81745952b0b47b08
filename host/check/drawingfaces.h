// SPDX-License-Identifier: MIT
// What a check wants to know of a drawing: its faces, and where they are. The drawing itself is not
// kept.
#pragma once

#include "host/documents/face.h"
#include "host/documents/svg/svgreader.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace host {

/// A text in a drawing. All texts are UTF-8.
struct TextPlace {
    std::string layer;   ///< its name; empty outside all layers
    std::string element; ///< the id of the text element; may be empty
    std::string words;   ///< of the text in one face, in one line, shortened
};

/// A face that visible text of a drawing has.
struct FaceUse {
    Face face;
    std::vector<std::string> laterFamilies; ///< see Document::laterFamilies
    std::size_t runs = 0;                   ///< visible ones
    std::vector<TextPlace> places;          ///< of the first of them, mostPlaces at most
    std::u32string characters; ///< those beyond ASCII that leave a mark, in order, each once

    static constexpr std::size_t mostPlaces = 20;
};

struct DrawingFaces {
    std::string file;
    std::string error; ///< one line that names the file, when it could not be read; else empty
    std::vector<FaceUse> faces; ///< in order of first appearance
};

/// Reads a drawing; "-" is the standard input. Does not throw for what is wrong with the drawing.
[[nodiscard]] DrawingFaces readFaces(const std::filesystem::path& file, const SvgOptions& options);

/// Reads drawings in `threads` threads of its own (at least one) and gives them to `take` in the
/// order of `files`, in the caller's thread. Of those that are read ahead it keeps few. What `take`
/// throws ends it and is passed on.
void readAllFaces(std::span<const std::filesystem::path> files, const SvgOptions& options,
                  unsigned threads, const std::function<void(DrawingFaces)>& take);

} // namespace host
