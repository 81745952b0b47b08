// SPDX-License-Identifier: MIT
// A session bus for this process and those that it starts, where the session has none.
#pragma once

#include <optional>
#include <string>

namespace platform {

/// Starts a bus daemon that ends with this process, however this process ends, and returns its
/// address; nothing, with `reason` set, when that fails.
[[nodiscard]] std::optional<std::string> startPrivateBus(std::string& reason);

} // namespace platform
