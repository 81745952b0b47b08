// SPDX-License-Identifier: MIT
// Texts at the border to plug-ins: checking UTF-8, and filling a caller's buffer.
#pragma once

#include "sp/types.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// Strict: no overlong forms, no surrogates, nothing above U+10FFFF.
[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

/// Copies at most `size` - 1 bytes, cut between characters, and a terminating zero. `size`
/// is greater than 0.
void copyText(std::string_view text, char* buffer, std::int32_t size) noexcept;

/// A status code for messages: its four characters if it is made of such, else a number.
[[nodiscard]] std::string errorText(SPErr error);

/// Reads what errorText writes; false when it is neither a number nor four characters.
[[nodiscard]] bool readError(std::string_view text, SPErr& error) noexcept;

} // namespace host
