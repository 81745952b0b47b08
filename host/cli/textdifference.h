// SPDX-License-Identifier: MIT
// What differs between two texts, as the program diff tells it.
#pragma once

#include <string>

namespace host {

/// The lines that differ, in the unified form. `name` is what both are called. Throws
/// std::runtime_error, or std::system_error, when diff cannot be run.
[[nodiscard]] std::string differenceOf(const std::string& before, const std::string& after,
                                       const std::string& name);

} // namespace host
