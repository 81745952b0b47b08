// SPDX-License-Identifier: MIT
// Words of a document, to be shown in one line.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// UTF-8 in one line without needless blanks, cut between words if it is long.
[[nodiscard]] std::string lineOf(std::string_view text);

} // namespace host
