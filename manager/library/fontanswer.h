// SPDX-License-Identifier: MIT
// What a font reader's process answers for one file: all that it read, in few bytes.
#pragma once

#include "manager/library/fontreader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace manager {

/// No answer is longer. What would be is a problem of its file.
constexpr std::size_t maximumAnswer = std::size_t{16} << 20U;

[[nodiscard]] std::string encodeAnswer(const FontFileOutcome& outcome);

/// The outcome that an answer tells; nullopt: it tells none. The answer comes from a process of
/// this program, but one that may have been taken over by the file it read: nothing in it is
/// trusted.
[[nodiscard]] std::optional<FontFileOutcome> decodeAnswer(std::string_view answer);

} // namespace manager
