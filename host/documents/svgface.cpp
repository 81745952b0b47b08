// SPDX-License-Identifier: MIT
// Makes a face of the values that the cascade gave.
#include "host/documents/svgdrawing.h"

#include <algorithm>

namespace host::svg {
namespace {

/// Some programs write the PostScript name in the family's place: "Oswald-Bold".
bool isPostScriptName(std::string_view family) {
    const std::size_t dash = family.find('-');
    return dash != std::string_view::npos && dash != 0 && dash + 1 < family.size() &&
           family.find(' ') == std::string_view::npos &&
           readStyleWords(family.substr(dash + 1)).complete;
}

/// A family that is written with escapes may hold line ends, which no font's name does and which
/// would end a line of whatever tells of it.
std::string inOneLine(std::string family) {
    std::replace_if(
        family.begin(), family.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; }, ' ');
    return family;
}

} // namespace

Face makeFace(const Tree& tree, const Styles& styles, const Style& style) {
    Face face;
    face.weight = static_cast<int>(style.value(css::Property::Weight));
    face.slant = static_cast<Slant>(style.value(css::Property::Slant));
    face.stretch = style.value(css::Property::Stretch) / 1000.0;

    const auto families = css::readFamilies(styles.texts[style.value(css::Property::Family)]);
    if (families.empty() || families.front().generic) {
        face.family = families.empty() ? "sans-serif" : families.front().name;
        face.origin = FaceOrigin::Generic;
    } else {
        face.family = inOneLine(families.front().name);
        const std::string folded = css::foldFamily(face.family);
        if (styles.sheets.embeddedFamilies().contains(folded) ||
            tree.embeddedFamilies.contains(folded)) {
            face.origin = FaceOrigin::Embedded;
        } else if (isPostScriptName(face.family)) {
            face.postScriptName = face.family;
            const StyleWords words =
                readStyleWords(std::string_view(face.family).substr(face.family.find('-') + 1));
            if (face.weight == 400 && face.slant == Slant::Upright && face.stretch == 100) {
                face.weight = words.weight;
                face.slant = words.slant;
                face.stretch = words.stretch;
            }
        }
    }
    face.style = styleText(face.weight, face.slant, face.stretch);
    return face;
}

} // namespace host::svg
