// SPDX-License-Identifier: MIT
// Type keywords and technology names of font records.
#include "GLYFontInfo.h"

#include <algorithm>
#include <array>

namespace GLY {

namespace {

struct TypeNames {
    std::string_view keyword;
    std::string_view technology;
};

// By Protocol::Font::Type; the wildcard has no entry.
constexpr std::array<TypeNames, 4> typeNames{{
    {"T1", "PostScript"},
    {"TT", "TrueType"},
    {"OT_T1", "OpenType PostScript"},
    {"OT_TT", "OpenType TrueType"},
}};

const TypeNames* findNames(Protocol::Font::Type type) {
    const bool isKnown = type >= 0 && type < static_cast<std::int32_t>(typeNames.size());
    return isKnown ? &typeNames[static_cast<std::size_t>(type)] : nullptr;
}

} // namespace

GLYFontInfo::GLYFontInfo() = default;
GLYFontInfo::~GLYFontInfo() = default;

Protocol::Font::Type GLYFontInfo::typeStringToEnum(std::string_view keyword) {
    const auto* const found =
        std::find_if(typeNames.begin(), typeNames.end(),
                     [keyword](const TypeNames& names) { return names.keyword == keyword; });
    // Past the last entry stands the wildcard.
    return static_cast<Protocol::Font::Type>(found - typeNames.begin());
}

std::string GLYFontInfo::getTypeString() const {
    const TypeNames* const names = findNames(font.type);
    return names == nullptr ? std::string() : std::string(names->keyword);
}

std::string GLYFontInfo::getTechnology() const {
    const TypeNames* const names = findNames(font.type);
    return names == nullptr ? "Unknown" : std::string(names->technology);
}

} // namespace GLY
