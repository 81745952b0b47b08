// SPDX-License-Identifier: MIT
// One exchange with the font manager by Apple events, with its retries.
#pragma once

#include <string>

namespace GLY {

/// Sends `command` to the application with the font manager's signature and returns the folded
/// reply, or an empty text if none came. Tries 20 times with half a second between, and blocks that
/// long: about 10 s if nobody is there, 15 s more per attempt if somebody is but does not answer.
/// Throws std::bad_alloc only. [any-thread]
[[nodiscard]] std::string exchangeCommand(const std::string& command);

} // namespace GLY
