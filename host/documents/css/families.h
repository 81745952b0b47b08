// SPDX-License-Identifier: MIT
// Family lists as style sheets and attributes write them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::css {

/// One family of a list. `start` and `end` bound it, quotes included, in the text it was read from.
struct FamilyName {
    std::string name;
    bool generic = false;
    std::size_t start = 0;
    std::size_t end = 0;
};

/// Lenient as drawing programs need it: unquoted names may hold digits and signs anywhere.
[[nodiscard]] std::vector<FamilyName> readFamilies(std::string_view list);

} // namespace host::css
