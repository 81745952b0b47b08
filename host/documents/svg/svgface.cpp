// SPDX-License-Identifier: MIT
// Makes a face of the values that the cascade gave.
#include "host/documents/svg/svgdrawing.h"

#include "faces/stylewords.h"
#include "host/documents/css/families.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace host::svg {
namespace {

/// Some programs write the PostScript name in the family's place: "Oswald-Bold", "MinionPro-Disp".
/// Where the words of the style begin in it; npos for what is no such name.
std::size_t styleInPostScriptName(std::string_view family) {
    const auto fits = [](char c) {
        return c > ' ' && c < 0x7F && std::string_view("()<>[]{}/%").find(c) == std::string::npos;
    };
    const std::size_t dash = family.find('-');
    return dash != std::string_view::npos && dash != 0 && dash + 1 < family.size() &&
                   std::all_of(family.begin(), family.end(), fits)
               ? dash + 1
               : std::string_view::npos;
}

/// No font's family is longer, by far, and many faces may have the same one.
constexpr std::size_t longestFamily = 255;

/// A family that is written with escapes may hold line ends, which no font's name does and which
/// would end a line of whatever tells of it.
std::string inOneLine(std::string family) {
    if (family.size() > longestFamily) {
        std::size_t end = longestFamily;
        while ((static_cast<unsigned char>(family[end]) & 0xC0U) == 0x80U && end > 0) {
            --end; // of a character all or nothing
        }
        family.resize(end);
        family.shrink_to_fit();
    }
    std::replace_if(
        family.begin(), family.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return family;
}

} // namespace

Face faceOfFamilies(const Tree& tree, const Styles& styles, std::uint32_t number) {
    Face face;
    auto families = css::readFamilies(styles.texts[number]);
    if (families.empty() || families.front().generic) {
        face.family = families.empty() ? "sans-serif" : families.front().name;
        face.origin = FaceOrigin::Generic;
        return face;
    }
    const std::string folded = css::foldFamily(families.front().name);
    face.family = inOneLine(std::move(families.front().name));
    if (styles.sheets.embeddedFamilies().contains(folded) ||
        tree.embeddedFamilies.contains(folded)) {
        face.origin = FaceOrigin::Embedded;
    } else if (styleInPostScriptName(face.family) != std::string_view::npos) {
        face.postScriptName = face.family;
    }
    return face;
}

std::vector<std::string> laterFamilies(std::string_view list) {
    constexpr std::size_t most = 16; // nobody looks behind so many
    auto families = css::readFamilies(list);
    std::vector<std::string> names;
    for (std::size_t i = 1; i < families.size() && i <= most; ++i) {
        names.push_back(inOneLine(std::move(families[i].name)));
    }
    return names;
}

Face styledFace(Face face, const Style& look) {
    face.weight = static_cast<int>(look.value(css::Property::Weight));
    face.slant = static_cast<Slant>(look.value(css::Property::Slant));
    face.stretch = look.value(css::Property::Stretch) / 1000.0;
    if (!face.postScriptName.empty() && face.weight == 400 && face.slant == Slant::Upright &&
        face.stretch == 100) {
        const faces::StyleWords words = faces::readStyleWords(
            std::string_view(face.family).substr(styleInPostScriptName(face.family)));
        if (words.complete) {
            const faces::Style said = words.style();
            face.weight = static_cast<int>(said.weight);
            face.slant = said.slant;
            face.stretch = said.width;
        }
    }
    face.style = faces::styleText(face.look());
    return face;
}

} // namespace host::svg
