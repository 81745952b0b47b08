// SPDX-License-Identifier: MIT
// FreeType holds the small tables; HarfBuzz reads characters by ranges, which is a tenth of the
// work of asking for each, and the lists of features.
#include "faces/fonttables.h"

#include "faces/coverage.h"

#include <algorithm>
#include <array>
#include FT_TRUETYPE_TAGS_H
#include <string>
#include <utility>
#include <vector>

namespace faces {

namespace {

constexpr char32_t firstVisible = 0x20;
constexpr unsigned maximumEntries = 4096;
constexpr std::array layoutTables = {TTAG_GSUB, TTAG_GPOS};

struct BlobDeleter {
    void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
};
struct SetDeleter {
    void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};

// Symbols stand at U+F000 and are typed as letters, so they count in both places.
Coverage withLetters(const Coverage& coverage) {
    constexpr char32_t first = 0xF000;
    constexpr char32_t last = 0xF0FF;
    Coverage both;
    for (char32_t character = first; character <= last; ++character) {
        if (covers(coverage, character) && character - first >= firstVisible) {
            addCharacter(both, character - first);
        }
    }
    std::copy_if(coverage.begin(), coverage.end(), std::back_inserter(both),
                 [](const auto& range) { return range.first > last - first; });
    return both;
}

double weightOf(const TT_OS2& os2, bool bold) {
    unsigned weight = os2.usWeightClass;
    weight *= weight < 10 ? 100 : 1; // the scale of the first fonts
    return weight == 0 ? (bold ? 700 : 400) : std::min(weight, 1000U);
}

double widthOf(const TT_OS2& os2) {
    static constexpr std::array<double, 10> widths = {100, 50,    62.5, 75,  87.5,
                                                      100, 112.5, 125,  150, 200};
    return os2.usWidthClass < widths.size() ? widths[os2.usWidthClass] : 100;
}

unsigned number16(const FT_Byte* bytes) {
    return unsigned{bytes[0]} << 8U | bytes[1];
}

enum class LayoutList : FT_Long { Scripts = 4, Features = 6 }; ///< where its offset stands

// A list in GSUB or GPOS: a count, then six bytes for each entry, a tag first.
std::vector<std::string> layoutTags(FT_Face face, FT_ULong table, LayoutList list) {
    constexpr FT_ULong entrySize = 6;
    const auto load = [&](FT_Long offset, FT_Byte* bytes, FT_ULong length) {
        return FT_Load_Sfnt_Table(face, table, offset, bytes, &length) == 0;
    };
    std::array<FT_Byte, 2> number{};
    if (!load(static_cast<FT_Long>(list), number.data(), number.size())) {
        return {};
    }
    const auto start = static_cast<FT_Long>(number16(number.data()));
    if (start == 0 || !load(start, number.data(), number.size())) {
        return {};
    }
    const FT_ULong count = std::min(number16(number.data()), maximumEntries);
    std::vector<FT_Byte> entries(count * entrySize);
    if (count == 0 || !load(start + 2, entries.data(), entries.size())) {
        return {};
    }
    std::vector<std::string> tags;
    for (FT_ULong i = 0; i < count; ++i) {
        std::string tag(reinterpret_cast<const char*>(&entries[i * entrySize]), 4);
        if (std::all_of(tag.begin(), tag.end(), [](char c) { return c >= ' ' && c < 0x7F; }) &&
            (tags.empty() || tags.back() != tag)) {
            tags.push_back(std::move(tag));
        }
    }
    return tags;
}

std::string vendorOf(const TT_OS2& os2) {
    std::string vendor;
    for (const FT_Char c : os2.achVendID) {
        if (c > ' ' && c < 0x7F) {
            vendor += static_cast<char>(c);
        }
    }
    return vendor == "UKWN" ? std::string() : vendor;
}

template <class Table>
const Table* table(FT_Face face, FT_Sfnt_Tag tag) {
    return static_cast<const Table*>(FT_Get_Sfnt_Table(face, tag));
}

} // namespace

FontTables::FontTables(FT_Face face, std::span<const std::uint8_t> bytes, long number)
    : face_(face) {
    if (!FT_IS_SFNT(face)) {
        return;
    }
    const std::unique_ptr<hb_blob_t, BlobDeleter> blob(hb_blob_create(
        reinterpret_cast<const char*>(bytes.data()), static_cast<unsigned>(bytes.size()),
        HB_MEMORY_MODE_READONLY, nullptr, nullptr));
    tables_.reset(hb_face_create(blob.get(), static_cast<unsigned>(number)));
    head_ = table<TT_Header>(face, FT_SFNT_HEAD);
    os2_ = table<TT_OS2>(face, FT_SFNT_OS2);
    if (os2_ != nullptr && os2_->version == 0xFFFF) {
        os2_ = nullptr; // the font has none
    }
}

bool FontTables::hasLayout() const {
    return std::any_of(layoutTables.begin(), layoutTables.end(), [&](FT_ULong tag) {
        return !layoutTags(face_, tag, LayoutList::Scripts).empty();
    });
}

unsigned FontTables::familyClass() const {
    return os2_ == nullptr ? 0 : static_cast<std::uint16_t>(os2_->sFamilyClass) >> 8U;
}

Coverage FontTables::coverage() const {
    Coverage coverage;
    FT_CharMap map = face_->charmap;
    if (map == nullptr && FT_Select_Charmap(face_, FT_ENCODING_MS_SYMBOL) == 0) {
        map = face_->charmap;
    }
    if (map == nullptr) {
        return coverage;
    }
    if (tables_ != nullptr && FT_Get_CMap_Format(map) > 0) {
        const std::unique_ptr<hb_set_t, SetDeleter> set(hb_set_create());
        hb_face_collect_unicodes(tables_.get(), set.get());
        hb_codepoint_t last = firstVisible - 1;
        for (hb_codepoint_t first = 0; hb_set_next_range(set.get(), &first, &last) != 0;) {
            coverage.emplace_back(first, last);
        }
    } else {
        FT_UInt glyph = 0;
        for (FT_ULong c = FT_Get_First_Char(face_, &glyph); glyph != 0;
             c = FT_Get_Next_Char(face_, c, &glyph)) {
            if (c >= firstVisible) {
                addCharacter(coverage, static_cast<char32_t>(c));
            }
        }
    }
    return map->encoding == FT_ENCODING_MS_SYMBOL ? withLetters(coverage) : coverage;
}

Style FontTables::style() const {
    constexpr unsigned italicBit = 1;
    constexpr unsigned obliqueBit = 1U << 9U;
    Style style;
    if ((face_->style_flags & FT_STYLE_FLAG_ITALIC) != 0) {
        style.slant = Slant::Italic;
    }
    const bool bold = (face_->style_flags & FT_STYLE_FLAG_BOLD) != 0;
    if (os2_ == nullptr) {
        style.weight = bold ? 700 : 400;
        return style;
    }
    style.weight = weightOf(*os2_, bold);
    style.width = widthOf(*os2_);
    if ((os2_->fsSelection & obliqueBit) != 0) {
        style.slant = Slant::Oblique;
    } else if ((os2_->fsSelection & italicBit) != 0) {
        style.slant = Slant::Italic;
    }
    return style;
}

void FontTables::fill(Face& face) const {
    face.style = style();
    if (head_ != nullptr) {
        face.revision = static_cast<std::uint32_t>(head_->Font_Revision);
    }
    if (os2_ != nullptr) {
        face.foundry = face.foundry.empty() ? vendorOf(*os2_) : face.foundry;
        face.embedding = os2_->fsType;
        std::array<std::uint8_t, 10> panose{};
        std::copy(std::begin(os2_->panose), std::end(os2_->panose), panose.begin());
        if (std::any_of(panose.begin(), panose.end(), [](auto digit) { return digit != 0; })) {
            face.panose = panose;
        }
    }
    for (const FT_ULong tag : layoutTables) {
        const auto tags = layoutTags(face_, tag, LayoutList::Features);
        face.features.insert(face.features.end(), tags.begin(), tags.end());
    }
    std::sort(face.features.begin(), face.features.end());
    face.features.erase(std::unique(face.features.begin(), face.features.end()),
                        face.features.end());
}

} // namespace faces
