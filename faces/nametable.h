// SPDX-License-Identifier: MIT
// The name table of a font: its records decoded, and families with the styles that belong to them.
#pragma once

#include "faces/face.h"
#include "faces/namedecoder.h"

#include <cstdint>
#include <ft2build.h>
#include FT_FREETYPE_H
#include <string>
#include <string_view>
#include <vector>

namespace faces {

/// What the numbers of records mean.
enum class NameId : std::uint16_t {
    Copyright = 0,
    Family = 1,
    Style = 2,
    FullName = 4,
    Version = 5,
    PostScriptName = 6,
    Manufacturer = 8,
    Licence = 13,
    LicenceLink = 14,
    TypographicFamily = 16,
    TypographicStyle = 17,
    MacintoshFullName = 18,
    WwsFamily = 21, ///< of weight, width and slant
    WwsStyle = 22,
    VariationsPrefix = 25, ///< of the PostScript names of a variable font's instances
    FirstOfFont = 256,     ///< these and later ones mean what other tables say
};

struct NameRecord {
    Platform platform = Platform::Microsoft;
    std::string language; ///< as in Name
    NameId id = NameId::Family;
    std::string text; ///< UTF-8, never empty
};

/// The records of a face, in the order in which they are preferred: Microsoft's, then Unicode's,
/// then Macintosh's, English before other languages. Names of more than 1 KiB and texts of more
/// than 64 KiB are passed over, and what comes after some thousand records.
class NameTable {
public:
    enum class Extent { Standard, All };
    /// `extent` tells whether the records of the font's own are read as well.
    NameTable(FT_Face face, Extent extent, NameDecoder& decoder);

    /// The preferred text of a record; empty: there is none. Valid as long as this object.
    [[nodiscard]] std::string_view text(NameId id) const;
    /// The same in a language, where there is one.
    [[nodiscard]] std::string_view text(NameId id, std::string_view language) const;
    /// Families, each with the style of its own platform, language and kind; where a family has no
    /// such style, with the one that is nearest. Each pair once; `otherStyle` stands where the font
    /// has no style at all.
    [[nodiscard]] std::vector<Name> names(std::string_view otherStyle) const;
    /// The names of an instance whose style is record `style`.
    [[nodiscard]] std::vector<Name> instanceNames(NameId style) const;
    /// Each once.
    [[nodiscard]] std::vector<std::string> fullNames() const;

private:
    [[nodiscard]] const NameRecord* find(NameId id, Platform platform,
                                         std::string_view language) const;
    void addNames(std::vector<Name>& names, Platform platform, std::string_view otherStyle) const;
    [[nodiscard]] bool has(NameId id) const { return !text(id).empty(); }
    [[nodiscard]] std::string_view styleOf(NameId style, const NameRecord& family) const;

    std::vector<NameRecord> records_;
};

} // namespace faces
