// SPDX-License-Identifier: MIT
// Languages and encodings of name records: numbers in fonts, words elsewhere.
#pragma once

#include <string_view>

namespace faces {

/// Platforms of name records.
enum class Platform : unsigned { Unicode = 0, Macintosh = 1, Iso = 2, Microsoft = 3 };

/// The tag of a language by its platform's number, as RFC 5646 has it, in lower case and without
/// the region but for Chinese; empty: not known, or the platform has none.
[[nodiscard]] std::string_view languageTag(Platform platform, unsigned number);

/// What iconv calls an encoding; nullptr: none that it knows, as Macintosh's Roman.
[[nodiscard]] const char* encodingName(Platform platform, unsigned number);

} // namespace faces
