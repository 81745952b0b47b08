// SPDX-License-Identifier: MIT
// What a font reader's process answers for one file: field lines, closed by an empty line.
#pragma once

#include "manager/library/fontreader.h"

#include <optional>
#include <string>
#include <string_view>

namespace manager {

[[nodiscard]] std::string encodeAnswer(const FontFileOutcome& outcome);

/// The outcome that a whole answer, up to its empty line, tells; nullopt: it tells none. The answer
/// comes from a process of this program, but one that may have been taken over by the file it read:
/// nothing in it is trusted.
[[nodiscard]] std::optional<FontFileOutcome> decodeAnswer(std::string_view answer);

} // namespace manager
