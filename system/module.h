// SPDX-License-Identifier: MIT
// Modules that a program loads when it needs them.
#pragma once

#include <filesystem>

namespace sys {

/// Loads a module, seen from the folder above the running program's, which stays until the program
/// ends. nullptr: there is no such module, or no such function in it. [any-thread]
[[nodiscard]] void* functionOfModule(const std::filesystem::path& module, const char* name);

} // namespace sys
