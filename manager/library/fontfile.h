// SPDX-License-Identifier: MIT
// What one font file holds: its faces with their names and technology.
#pragma once

#include "manager/library/error.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// A font's technology. The numbers are kept in the index.
enum class FontType : std::uint8_t {
    Type1 = 0,
    TrueType = 1,
    OpenTypePostScript = 2,
    OpenTypeTrueType = 3,
};

/// A family and the style under it. Faces carry several in parallel: typographic, legacy, other
/// languages.
struct FaceName {
    std::string family;
    std::string style;
    bool operator==(const FaceName&) const = default;
};

struct FaceRecord {
    std::uint32_t index = 0; ///< as fontconfig numbers them: named instance in the upper 16 bits
    FontType type = FontType::TrueType;
    std::string postScriptName;  ///< may be empty
    std::vector<FaceName> names; ///< at least one; the first is the one to show
    bool operator==(const FaceRecord&) const = default;
};

struct FontFileContents {
    bool collection = false; ///< several fonts in one file (.ttc, .otc)
    std::vector<FaceRecord> faces;
    bool operator==(const FontFileContents&) const = default;
};

/// The file could not be read for a reason outside of it (rights, the disk, memory), which may
/// pass.
class UnreadableNow : public Error {
public:
    using Error::Error;
};

/// The greatest font file that is read. Larger ones are refused by name.
constexpr std::int64_t maximumFontFileSize = 512LL * 1024 * 1024;

/// Whether the name ends like a TrueType, OpenType, collection or Type 1 font (any case). Metrics
/// files (.afm, .pfm) do not.
[[nodiscard]] bool hasFontFileName(std::string_view name);

/// Reads a file's faces with fontconfig's scanner, so that they bear the names by which the desktop
/// will know them. Throws Error ("PATH: what is wrong and where") for anything that is no whole
/// font, UnreadableNow for one that could not be looked at. The time for a hostile file is not
/// bounded here; see FontReader.
[[nodiscard]] FontFileContents readFontFile(const std::string& path);

/// Family or style reduced for comparison: case folded, blanks dropped.
[[nodiscard]] std::string nameKey(std::string_view name);

} // namespace manager
