// SPDX-License-Identifier: MIT
// The font properties of style sheets: reading their values, and the tables that make equal values
// equal numbers, so that a hundred thousand runs compare and copy in a word.
#pragma once

#include "host/documents/face.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
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

/// One family of a list. `start` and `end` bound it, quotes included, in the text it was read from.
struct FamilyName {
    std::string name;
    bool generic = false;
    std::size_t start = 0;
    std::size_t end = 0;
};

/// Lenient as drawing programs need it: unquoted names may hold digits and signs anywhere.
std::vector<FamilyName> readFamilies(std::string_view list);

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
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const noexcept {
            return std::hash<std::string_view>{}(text);
        }
    };
    std::unordered_map<std::string, std::uint32_t, Hash, std::equal_to<>> numbers_;
};

struct PropertyDeclaration {
    Property property;
    bool important;
    bool shorthand; ///< from `font`
    Value value;
};
using PropertyDeclarations = std::vector<PropertyDeclaration>;

/// The property of a name, `font` apart. @return false for one that does not matter here
bool readPropertyName(std::string_view name, Property& property) noexcept;

/// @return false for a value that is not one of the property's, which is then ignored
bool readValue(Property property, std::string_view text, TextTable& texts, Value& value);

/// All that a block says about the properties above, in its order, `font` taken apart.
PropertyDeclarations readDeclarations(std::string_view block, TextTable& texts);

/// Where the family list begins in the value of `font`; npos if there is none.
std::size_t familiesInShorthand(std::string_view value);

/// The weight that `bolder` or `lighter` makes of an inherited one.
int relativeWeight(int inherited, bool bolder) noexcept;
/// The same of `wider` and `narrower`, in thousandths of a percent.
std::uint32_t relativeStretch(std::uint32_t inherited, bool wider) noexcept;

} // namespace host::css
