// SPDX-License-Identifier: MIT
// Selectors taken apart.
#pragma once

#include "host/documents/css/childplace.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::css {

struct AttributeTest {
    std::string name;        ///< without its prefix, but with ':' if it has one
    bool orPrefixed = false; ///< in any namespace or none
    char relation = 0;       ///< '=', '~', '|', '^', '$', '*', 0 for mere presence
    std::string value;
};

/// An element's place among its siblings, or among those of its type.
struct PlaceTest {
    PlaceSeries series;
    bool ofType = false;
    bool fromEnd = false;
};

/// How an element stands to the one that the compound to the left asks for.
enum class Combinator : std::uint8_t {
    Within,  ///< at any depth
    ChildOf, ///< ">"
    After,   ///< "+": right after it
    Behind   ///< "~": somewhere after it
};

/// What a selector asks of one element.
struct Compound {
    std::string type; ///< empty for any
    std::string id;
    std::vector<std::string> classes;
    std::vector<AttributeTest> attributes;
    std::vector<PlaceTest> places;
    std::vector<Compound> noneOf;             ///< ":not()"
    std::vector<std::vector<Compound>> anyOf; ///< ":is()" and ":where()", each by one of its own
    bool root = false;
    bool never = false; ///< it asks for what a drawing on paper never is, such as ":hover"
    Combinator combinator = Combinator::Within;

    /// Whether siblings have to be known.
    [[nodiscard]] bool asksForSiblings() const;
};

struct Selector {
    std::vector<Compound> compounds; ///< from right to left
    std::uint32_t specificity = 0;   ///< ids, classes and types in ten bits each
    std::uint32_t block = 0;         ///< of the style sheets, for whoever keeps it

    [[nodiscard]] bool asksForSiblings() const;
};

/// Reads one selector of a group; nothing for what is none, or not known here.
[[nodiscard]] std::optional<Selector> readSelector(std::string_view text);

} // namespace host::css
