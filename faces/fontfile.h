// SPDX-License-Identifier: MIT
// What one font file holds: its faces with their names and technology.
#pragma once

#include "faces/face.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace faces {

struct FontFileContents {
    bool collection = false; ///< several fonts in one file (.ttc, .otc)
    std::vector<Face> faces;
    bool operator==(const FontFileContents&) const = default;
};

/// A file that holds no whole font. Its text is one line, "PATH: what is wrong and where".
class UnreadableFont : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The file could not be read for a reason outside of it (rights, the disk, memory), which may
/// pass.
class UnreadableNow : public UnreadableFont {
public:
    using UnreadableFont::UnreadableFont;
};

/// The greatest font file that is read. Larger ones are refused by name.
constexpr std::int64_t maximumFontFileSize = 512LL * 1024 * 1024;

/// Whether the name ends like a TrueType, OpenType, collection or Type 1 font (any case). Metrics
/// files (.afm, .pfm) do not.
[[nodiscard]] bool hasFontFileName(std::string_view name);

/// [one-thread] Reads a file's faces: their names as they stand in the file, numbered as fontconfig
/// does. Throws UnreadableFont for anything that is no whole font, UnreadableNow for one
/// that could not be looked at. The time for a hostile file is not bounded here: whoever reads
/// files of unknown origin does it in a process apart.
[[nodiscard]] FontFileContents readFontFile(const std::string& path);

} // namespace faces
