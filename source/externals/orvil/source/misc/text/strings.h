// SPDX-License-Identifier: MIT
// Trimming, splitting, padding and comparing of narrow and wide texts.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Orvil {

/// Without the characters of " \t\r" at both ends. A newline is deliberately not among them.
[[nodiscard]] std::string trim(std::string_view text);
[[nodiscard]] std::wstring trim(std::wstring_view text);

/// Upper case in place, character by character in the C library's current locale. Bytes of UTF-8
/// beyond ASCII stay as they are in the locale "C".
void upCase(std::string& text);
void upCase(std::wstring& text);

/// Whether the upper-cased texts are equal.
[[nodiscard]] bool compareCaseInsensitive(std::string a, std::string b);
[[nodiscard]] bool compareCaseInsensitive(std::wstring a, std::wstring b);

/// Splits at every character of `separators`. With `skipEmpty` the tokens are the runs between
/// them; without it every separator ends a token, so that neighbouring, leading and trailing
/// separators give empty ones (and an empty text gives one).
[[nodiscard]] std::vector<std::string> tokenize(std::string_view text, std::string_view separators,
                                                bool skipEmpty);
[[nodiscard]] std::vector<std::wstring> tokenize(std::wstring_view text,
                                                 std::wstring_view separators, bool skipEmpty);

/// A shorter text is right-aligned in `width` characters with `fill` before it. A longer one is
/// cut to its last `width` characters with `cut`, and stays whole without.
[[nodiscard]] std::string resize(const std::string& text, std::size_t width, char fill, bool cut);
[[nodiscard]] std::wstring resize(const std::wstring& text, std::size_t width, wchar_t fill,
                                  bool cut);

/// The whole rest of the stream.
[[nodiscard]] std::string streamToString(std::istream& stream);
[[nodiscard]] std::wstring streamToWString(std::wistream& stream);

} // namespace Orvil
