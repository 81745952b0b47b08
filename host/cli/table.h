// SPDX-License-Identifier: MIT
// Texts for a terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace host {

/// What comes from outside: characters that would move the cursor or turn text around, and what is
/// no UTF-8, as "?".
[[nodiscard]] std::string printable(std::string_view text);

using TableLine = std::vector<std::string>;
/// Lines that are set in by two blanks, in columns. The texts are printable; all lines have as
/// many.
[[nodiscard]] std::string tableOf(const std::vector<TableLine>& lines);

} // namespace host
