// SPDX-License-Identifier: MIT
// Names reduced to what counts when they are compared.
#pragma once

#include <string>
#include <string_view>

namespace faces {

/// Family or style reduced for comparison: case folded, blanks dropped.
[[nodiscard]] std::string nameKey(std::string_view name);

} // namespace faces
