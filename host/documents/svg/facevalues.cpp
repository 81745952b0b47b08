// SPDX-License-Identifier: MIT
// Writes the values of font properties.
#include "host/documents/svg/facevalues.h"

#include "host/documents/css/css.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace host::svg {
namespace {

using css::Property;

/// Words of letters, digits and hyphens need no quotes when none begins with a digit or a hyphen.
bool isPlainName(std::string_view name) {
    bool wordStart = true;
    for (const char c : name) {
        const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        const bool other = (c >= '0' && c <= '9') || c == '-';
        if (c == ' ' ? wordStart : !letter && (wordStart || !other)) {
            return false;
        }
        wordStart = c == ' ';
    }
    return !wordStart && !css::readCommonKeyword(name);
}

} // namespace

NewValue valueFor(Property property, const Face& face) {
    switch (property) {
    case Property::Family:
        return {face.family, face.origin == FaceOrigin::Generic, 0};
    case Property::Hint:
        // Drawing programs call the plain style by this name here.
        return {face.family + ", " + (face.style == "Regular" ? "Normal" : face.style), false, 0};
    case Property::Slant:
        return {{}, false, static_cast<std::uint32_t>(face.slant)};
    case Property::Weight:
        return {{}, false, static_cast<std::uint32_t>(face.weight)};
    default:
        return {{}, false, static_cast<std::uint32_t>(std::lround(face.stretch * 1000))};
    }
}

std::string TextPlace::escape(std::string_view text) const {
    if (cdata) {
        return std::string(text);
    }
    std::string result;
    for (const char c : text) {
        if (c == '&') {
            result += "&amp;";
        } else if (c == '<') {
            result += "&lt;";
        } else if (c == xmlQuote && c != 0) {
            result += c == '"' ? "&quot;" : "&apos;";
        } else {
            result += c;
        }
    }
    return result;
}

std::string_view propertyName(Property property) {
    static constexpr std::array<std::string_view, css::facePropertyCount> names{
        "font-family", "font-style", "font-weight", "font-stretch", "-inkscape-font-specification"};
    return names[css::indexOf(property)];
}

std::string familyText(const NewValue& value, const TextPlace& place, bool quoteAlways) {
    const bool bare = isPlainName(value.family) &&
                      (value.generic || (!quoteAlways && !isGenericFamily(value.family)));
    return bare ? value.family : css::quoted(value.family, place.cssQuote(), !place.unicode);
}

std::string valueText(Property property, const NewValue& value, const TextPlace& place) {
    static constexpr std::array<std::string_view, 3> slants{"normal", "italic", "oblique"};
    switch (property) {
    case Property::Family:
        return value.family.empty() ? "initial" : familyText(value, place, true);
    case Property::Hint:
        return css::quoted(value.family, place.cssQuote(), !place.unicode);
    case Property::Slant:
        return std::string(slants[value.number]);
    case Property::Weight:
        return value.number == 400   ? "normal"
               : value.number == 700 ? "bold"
                                     : std::to_string(value.number);
    case Property::Stretch: {
        const double percent = value.number / 1000.0;
        const auto* const named =
            std::find_if(namedStretches.begin(), namedStretches.end(),
                         [percent](const NamedStretch& s) { return s.percent == percent; });
        if (named != namedStretches.end()) {
            return std::string(named->keyword);
        }
        const std::string thousandths = std::to_string(1000 + value.number % 1000);
        return std::to_string(value.number / 1000) + "." + thousandths.substr(1) + "%";
    }
    case Property::Visibility:
    case Property::Size:
    case Property::Display:
        break;
    }
    return {};
}

} // namespace host::svg
