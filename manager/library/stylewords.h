// SPDX-License-Identifier: MIT
// One spelling for style names that say the same in other words.
#pragma once

#include <string>
#include <string_view>

namespace manager {

/// Brings the key of a style name (nameKey) into one form: documents tell a style by weight, slant
/// and width, and fonts call theirs as they like. "Book", "Roman" and "Regular" are all the empty
/// form; "Oblique" is "italic", "Demi" is "semibold"; the order of words does not count. Words that
/// are not known stay. Forms begin with "=", which no key of a style name does.
[[nodiscard]] std::string styleForm(std::string_view styleKey);

} // namespace manager
