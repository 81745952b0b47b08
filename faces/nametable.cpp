// SPDX-License-Identifier: MIT
// FreeType finds the records; their order and pairing are made here.
#include "faces/nametable.h"

#include "faces/stylewords.h"

#include <algorithm>
#include <array>
#include FT_SFNT_NAMES_H
#include <optional>
#include <tuple>

namespace faces {

namespace {

constexpr std::size_t maximumRecords = 4096;
constexpr std::size_t maximumName = 1024;
constexpr std::size_t maximumText = 65'536;
constexpr std::size_t maximumNames = 256; ///< of one face

constexpr std::array standardIds = {
    NameId::Copyright,         NameId::Family,           NameId::Style,
    NameId::FullName,          NameId::Version,          NameId::PostScriptName,
    NameId::Manufacturer,      NameId::Licence,          NameId::LicenceLink,
    NameId::TypographicFamily, NameId::TypographicStyle, NameId::MacintoshFullName,
    NameId::WwsFamily,         NameId::WwsStyle,         NameId::VariationsPrefix,
};

/// Families and their styles, as they are preferred.
struct Pair {
    NameKind kind;
    NameId family;
    NameId style;
};
constexpr std::array pairs = {
    Pair{NameKind::WeightWidthSlant, NameId::WwsFamily, NameId::WwsStyle},
    Pair{NameKind::Typographic, NameId::TypographicFamily, NameId::TypographicStyle},
    Pair{NameKind::Legacy, NameId::Family, NameId::Style},
};

bool isWanted(NameId id, NameTable::Extent extent) {
    return (extent == NameTable::Extent::All && id >= NameId::FirstOfFont) ||
           std::find(standardIds.begin(), standardIds.end(), id) != standardIds.end();
}

bool isText(NameId id) {
    return id == NameId::Copyright || id == NameId::Licence || id == NameId::LicenceLink;
}

std::string_view bytesOf(const FT_SfntName& record) {
    return {reinterpret_cast<const char*>(record.string), record.string_len};
}

// From 0x8000 on, languages are written out in the font.
std::string languageOf(FT_Face face, const FT_SfntName& record, NameDecoder& decoder) {
    constexpr unsigned firstWrittenOut = 0x8000;
    if (record.language_id < firstWrittenOut || record.platform_id == 1) {
        return std::string(
            languageTag(static_cast<Platform>(record.platform_id), record.language_id));
    }
    FT_SfntLangTag tag{};
    if (FT_Get_Sfnt_LangTag(face, record.language_id, &tag) != 0 || tag.string_len > maximumName) {
        return {};
    }
    std::string text = decoder
                           .decode(Platform::Unicode, 0,
                                   {reinterpret_cast<const char*>(tag.string), tag.string_len})
                           .value_or("");
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

// Within the family of all its weights, the legacy style of a "Light" is still "Regular", which is
// another face's name there.
bool saysTheSame(std::string_view style, std::string_view other) {
    const Style one = readStyleWords(style).style();
    const Style two = readStyleWords(other).style();
    return one.weight == two.weight && one.width == two.width &&
           (one.slant == Slant::Upright) == (two.slant == Slant::Upright);
}

auto rank(const NameRecord& record) {
    static constexpr std::array<int, 4> platforms = {1, 2, 3, 0};
    const bool english =
        record.language.empty() || record.language == "en" || record.language.starts_with("en-");
    return std::make_tuple(platforms[static_cast<unsigned>(record.platform)], !english);
}

} // namespace

NameTable::NameTable(FT_Face face, Extent extent, NameDecoder& decoder) {
    const FT_UInt count = FT_Get_Sfnt_Name_Count(face);
    for (FT_UInt i = 0; i < count && records_.size() < maximumRecords; ++i) {
        FT_SfntName record{};
        if (FT_Get_Sfnt_Name(face, i, &record) != 0 || record.platform_id > 3) {
            continue;
        }
        const auto id = static_cast<NameId>(record.name_id);
        if (!isWanted(id, extent) || record.string_len > (isText(id) ? maximumText : maximumName)) {
            continue;
        }
        const auto platform = static_cast<Platform>(record.platform_id);
        std::optional<std::string> text =
            decoder.decode(platform, record.encoding_id, bytesOf(record));
        if (text && !text->empty()) {
            records_.push_back({platform, languageOf(face, record, decoder), id, std::move(*text)});
        }
    }
    std::stable_sort(records_.begin(), records_.end(),
                     [](const NameRecord& a, const NameRecord& b) { return rank(a) < rank(b); });
}

std::string_view NameTable::text(NameId id) const {
    const auto found = std::find_if(records_.begin(), records_.end(),
                                    [&](const NameRecord& record) { return record.id == id; });
    return found == records_.end() ? std::string_view() : found->text;
}

std::string_view NameTable::text(NameId id, std::string_view language) const {
    const auto found =
        std::find_if(records_.begin(), records_.end(), [&](const NameRecord& record) {
            return record.id == id && record.language == language;
        });
    return found == records_.end() ? text(id) : found->text;
}

const NameRecord* NameTable::find(NameId id, Platform platform, std::string_view language) const {
    const auto found =
        std::find_if(records_.begin(), records_.end(), [&](const NameRecord& record) {
            return record.id == id && record.platform == platform && record.language == language;
        });
    return found == records_.end() ? nullptr : &*found;
}

// Its own language's, else the preferred one, which need not be a word of that language but is a
// style of this face; only then the legacy style, which belongs to another family.
std::string_view NameTable::styleOf(NameId style, const NameRecord& family) const {
    if (const NameRecord* own = find(style, family.platform, family.language)) {
        return own->text;
    }
    if (const std::string_view other = text(style, family.language); !other.empty()) {
        return other;
    }
    if (style == NameId::WwsStyle) {
        return styleOf(NameId::TypographicStyle, family);
    }
    return style == NameId::Style ? std::string_view() : styleOf(NameId::Style, family);
}

void NameTable::addNames(std::vector<Name>& names, Platform platform,
                         std::string_view otherStyle) const {
    for (const Pair& pair : pairs) {
        const NameKind kind = pair.kind;
        // A font whose family is the same in both kinds may tell it once.
        const bool shared =
            kind == NameKind::Typographic && !has(pair.family) && has(NameId::TypographicStyle);
        const NameId family = shared ? NameId::Family : pair.family;
        for (const NameRecord& record : records_) {
            if (record.id != family || record.platform != platform) {
                continue;
            }
            std::string word(styleOf(pair.style, record));
            word = word.empty() ? std::string(otherStyle) : word;
            const bool needless = std::any_of(names.begin(), names.end(), [&](const Name& name) {
                return name.family == record.text &&
                       (name.style == word || (kind == NameKind::Legacy && name.kind != kind &&
                                               !saysTheSame(name.style, word)));
            });
            if (!needless && names.size() < maximumNames) {
                names.push_back({record.text, std::move(word), record.language, kind});
            }
        }
    }
}

std::vector<Name> NameTable::names(std::string_view otherStyle) const {
    std::vector<Name> names;
    for (const Platform platform :
         {Platform::Microsoft, Platform::Unicode, Platform::Macintosh, Platform::Iso}) {
        addNames(names, platform, otherStyle);
    }
    return names;
}

// The legacy family may be one of the default's weight alone.
std::vector<Name> NameTable::instanceNames(NameId style) const {
    const bool typographic = !text(NameId::TypographicFamily).empty();
    const NameId family = typographic ? NameId::TypographicFamily : NameId::Family;
    std::vector<Name> names;
    for (const NameRecord& record : records_) {
        if (record.id != family || names.size() >= maximumNames) {
            continue;
        }
        const std::string_view word = text(style, record.language);
        const bool isKnown = std::any_of(names.begin(), names.end(), [&](const Name& name) {
            return name.family == record.text && name.style == word;
        });
        if (!word.empty() && !isKnown) {
            names.push_back({record.text, std::string(word), record.language,
                             typographic ? NameKind::Typographic : NameKind::Legacy});
        }
    }
    return names;
}

std::vector<std::string> NameTable::fullNames() const {
    std::vector<std::string> names;
    for (const NameRecord& record : records_) {
        if ((record.id == NameId::FullName || record.id == NameId::MacintoshFullName) &&
            names.size() < maximumNames &&
            std::find(names.begin(), names.end(), record.text) == names.end()) {
            names.push_back(record.text);
        }
    }
    return names;
}

} // namespace faces
