// SPDX-License-Identifier: MIT
// Names of faces: generic families, the conventional PostScript name.
#include "host/documents/face.h"

#include <algorithm>
#include <array>
#include <functional>
#include <iterator>

namespace host {
namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lowered(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

} // namespace

std::size_t FaceHash::operator()(const Face& face) const noexcept {
    const std::hash<std::string_view> ofText;
    std::size_t result = ofText(face.family);
    for (const std::size_t part :
         {ofText(face.style), ofText(face.postScriptName), static_cast<std::size_t>(face.weight),
          static_cast<std::size_t>(face.slant), std::hash<double>{}(face.stretch)}) {
        result = result * 31 + part;
    }
    return result;
}

bool isGenericFamily(std::string_view family) {
    static constexpr std::array<std::string_view, 17> names{"serif",
                                                            "sans-serif",
                                                            "monospace",
                                                            "cursive",
                                                            "fantasy",
                                                            "system-ui",
                                                            "ui-serif",
                                                            "ui-rounded",
                                                            "ui-monospace",
                                                            "ui-sans-serif",
                                                            "emoji",
                                                            "math",
                                                            "fangsong",
                                                            "sans",
                                                            "mono",
                                                            "-apple-system",
                                                            "blinkmacsystemfont"};
    if (family.size() > 18) {
        return false;
    }
    return std::find(names.begin(), names.end(), lowered(family)) != names.end();
}

std::string conventionalPostScriptName(std::string_view family, std::string_view style) {
    const auto isBlank = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
    std::string result;
    std::remove_copy_if(family.begin(), family.end(), std::back_inserter(result), isBlank);
    result += '-';
    const std::size_t dash = result.size();
    std::remove_copy_if(style.begin(), style.end(), std::back_inserter(result), isBlank);
    if (result.size() == dash) {
        result += "Regular";
    }
    return result;
}

} // namespace host
