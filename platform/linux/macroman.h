// SPDX-License-Identifier: MIT
// The MacRoman encoding, both ways.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// Every byte is valid.
[[nodiscard]] std::string macRomanToUtf8(std::string_view text);
/// Nothing when a character has no place in MacRoman. `text` is valid UTF-8.
[[nodiscard]] std::optional<std::string> utf8ToMacRoman(const std::string& text);

} // namespace platform
