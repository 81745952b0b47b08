// SPDX-License-Identifier: MIT
// The font properties of style sheets: reading their values, and the table that makes equal texts
// equal numbers, so that a hundred thousand runs compare and copy in a word.
#pragma once

#include "host/documents/textmap.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace host::css {

enum class Property : std::uint8_t {
    Family,
    Slant,
    Weight,
    Stretch,
    Hint,       ///< "-inkscape-font-specification": the drawing program's own name for the face
    Visibility, ///< of which only matters whether it is "visible"
    Size,       ///< of which only 0 matters
    Display     ///< of which only "none" matters
};
inline constexpr std::size_t propertyCount = 8;
/// The properties that make a face come first; they are inherited.
inline constexpr std::size_t facePropertyCount = 5;

constexpr std::size_t indexOf(Property property) {
    return static_cast<std::size_t>(property);
}

/// What a declaration says about one property.
struct Value {
    enum class Kind : std::uint8_t { Absolute, Inherit, Initial, Up, Down };
    Kind kind = Kind::Absolute;
    /// Family, Hint: text number. Weight: 1 to 1000. Slant: the enumerator. Stretch: thousandths of
    /// a percent. Visibility, Size, Display: 1 for what hides text.
    std::uint32_t number = 0;
};

/// Numbers texts, family lists and hints; 0 is the absent text.
class TextTable {
public:
    TextTable() : texts_(1) {}
    // A copy's views would be of the other one's keys.
    TextTable(const TextTable&) = delete;
    TextTable& operator=(const TextTable&) = delete;
    TextTable(TextTable&&) = default;
    TextTable& operator=(TextTable&&) = default;
    std::uint32_t add(std::string_view text);
    std::string_view operator[](std::uint32_t number) const { return texts_[number]; }

private:
    std::vector<std::string_view> texts_; ///< views of the keys, which do not move
    TextMap<std::uint32_t> numbers_;
};

/// The property of a name, `font` apart; nothing for one that does not matter here.
[[nodiscard]] std::optional<Property> propertyNamed(std::string_view name) noexcept;

/// Nothing for a value that is not one of the property's, and which is ignored for that.
[[nodiscard]] std::optional<Value> readValue(Property property, std::string_view text,
                                             TextTable& texts);

/// The same without the keywords that every property takes, and for all but family and hint.
[[nodiscard]] std::optional<Value> readOwnValue(Property property, std::string_view text);
/// The keywords that every property takes. What holds a variable is not known: inherited.
[[nodiscard]] std::optional<Value> readCommonKeyword(std::string_view text);

/// The weight that `bolder` or `lighter` makes of an inherited one.
[[nodiscard]] int relativeWeight(int inherited, bool bolder) noexcept;
/// The same of `wider` and `narrower`, in thousandths of a percent.
[[nodiscard]] std::uint32_t relativeStretch(std::uint32_t inherited, bool wider) noexcept;

} // namespace host::css
