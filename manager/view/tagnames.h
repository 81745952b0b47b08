// SPDX-License-Identifier: MIT
// What people call a language or a script.
#pragma once

#include <string>

namespace manager {

/// [any-thread] "German" of "de" in English, as `locale` says it; the code where nobody knows it.
[[nodiscard]] std::string languageName(const std::string& code, const std::string& locale);
/// [any-thread] "Latin" of "Latn".
[[nodiscard]] std::string scriptName(const std::string& code, const std::string& locale);

} // namespace manager
