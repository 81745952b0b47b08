// SPDX-License-Identifier: MIT
// Selectors taken apart.
#pragma once

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

/// What a selector asks of one element.
struct Compound {
    std::string type; ///< empty for any
    std::string id;
    std::vector<std::string> classes;
    std::vector<AttributeTest> attributes;
    bool root = false;
    bool childOf = false; ///< the compound to its left is its parent, not any ancestor
};

struct Selector {
    std::vector<Compound> compounds; ///< from right to left
    std::uint32_t specificity = 0;   ///< ids, classes and types in ten bits each
    std::uint32_t block = 0;         ///< of the style sheets, for whoever keeps it
};

/// Reads one selector of a group; nothing for what is none, or not known here.
[[nodiscard]] std::optional<Selector> readSelector(std::string_view text);

} // namespace host::css
