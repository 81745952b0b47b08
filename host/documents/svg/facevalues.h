// SPDX-License-Identifier: MIT
// New values of font properties, written so that they can stand where they go.
#pragma once

#include "host/documents/css/fontvalues.h"
#include "host/documents/face.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace host::svg {

/// The properties that make a face.
inline constexpr std::array<css::Property, css::facePropertyCount> faceProperties{
    css::Property::Family, css::Property::Slant, css::Property::Weight, css::Property::Stretch,
    css::Property::Hint};

/// What one property of some text is to become.
struct NewValue {
    /// Property::Family: the family, empty for the initial one; Property::Hint: the hint's text.
    std::string family;
    bool generic = false;
    std::uint32_t number = 0; ///< of the other properties, as in Style::values

    bool operator==(const NewValue&) const = default;
};

/// What one of the properties that make a face becomes when some text is given a face.
[[nodiscard]] NewValue valueFor(css::Property property, const Face& face);

/// Where a text goes, and what that demands of it.
struct TextPlace {
    char xmlQuote = 0; ///< the quote around the attribute; 0 in a style sheet
    bool cdata = false;
    bool unicode = true; ///< names may be written as they are; otherwise in CSS escapes

    char cssQuote() const { return xmlQuote == '\'' ? '"' : '\''; }
    [[nodiscard]] std::string escape(std::string_view text) const;
};

/// The name under which a property of a face is declared.
[[nodiscard]] std::string_view propertyName(css::Property property);

/// Not yet escaped.
[[nodiscard]] std::string familyText(const NewValue& value, const TextPlace& place,
                                     bool quoteAlways);

/// The same for any of the properties that make a face.
[[nodiscard]] std::string valueText(css::Property property, const NewValue& value,
                                    const TextPlace& place);

} // namespace host::svg
