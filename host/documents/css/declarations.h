// SPDX-License-Identifier: MIT
// What a block of declarations says about the font properties, the shorthand `font` taken apart.
#pragma once

#include "host/documents/css/fontvalues.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace host::css {

struct PropertyDeclaration {
    Property property;
    bool important;
    bool shorthand; ///< from `font`
    Value value;
};
using PropertyDeclarations = std::vector<PropertyDeclaration>;

/// In the order of the block.
[[nodiscard]] PropertyDeclarations readDeclarations(std::string_view block, TextTable& texts);

/// Where the family list begins in the value of `font`; npos if there is none.
[[nodiscard]] std::size_t familiesInShorthand(std::string_view value);

} // namespace host::css
