// SPDX-License-Identifier: MIT
// Texts for which there is not room enough.
#pragma once

#include <cstddef>
#include <string_view>

namespace sys {

/// The beginning of `text`, at most `longest` bytes of it; no character of UTF-8 is cut in two.
[[nodiscard]] std::string_view cutText(std::string_view text, std::size_t longest);

} // namespace sys
