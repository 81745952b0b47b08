// SPDX-License-Identifier: MIT
// Problems of font files in the user's language.
#pragma once

#include <string>
#include <string_view>

namespace manager {

/// [main-thread] A problem "FILE: ..." in the language that was chosen, where it is one of those
/// that reading a font file has; else as it is.
[[nodiscard]] std::string problemInWords(std::string_view problem);

} // namespace manager
