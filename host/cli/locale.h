// SPDX-License-Identifier: MIT
// The user's language and country, in the form that plug-ins know.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The part of a locale's name that plug-ins know: "de_DE" of "de_DE.UTF-8@euro"; "en_US" for "C",
/// "POSIX" and nothing.
[[nodiscard]] std::string localeCode(std::string_view name);

/// From LC_ALL, else LC_MESSAGES, else LANG; empty ones do not count.
[[nodiscard]] std::string localeOfEnvironment();

} // namespace host
