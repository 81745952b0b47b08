// SPDX-License-Identifier: MIT
// This program once more, as another process.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <sys/types.h>

namespace manager {

struct OwnProcess {
    std::span<const std::string> words; ///< its command line, without the program
    std::optional<int> input = {};      ///< what it reads; else that of this process
    bool hasOwnSession = false;         ///< it does not end with this one's terminal
};

/// Starts it with all signals unblocked and the user's own LANGUAGE, for the caller to wait for. An
/// errno value, or 0 and its number.
[[nodiscard]] int startOwn(const OwnProcess& wanted, pid_t& process);

} // namespace manager
