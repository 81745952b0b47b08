// SPDX-License-Identifier: MIT
// Small text helpers of the plug-in's own sources. Their rules differ from those of the same names
// in Orvil. None reports an error or throws on bad input; all work in the classic locale.
// [any-thread]
#pragma once

#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace GLY {

/// Does nothing: the place for an error box.
void showErrorMessage(std::string text);

/// What follows the last '/' or '\'; the whole path if it has neither.
[[nodiscard]] std::string extractFilename(std::string_view path);

/// The pieces between occurrences of the whole `delimiter`, empty ones included; what follows the
/// last occurrence is always the final piece. An empty delimiter splits nothing. `flag` has no
/// effect.
[[nodiscard]] std::vector<std::string> tokenize(std::string_view text, std::string_view delimiter,
                                                bool flag = false);

/// The text without the characters of " \t\r" at both ends. A line feed is not among them.
[[nodiscard]] std::string trim(std::string_view text);

/// Reads a value as a stream does: leading white space is skipped, and what cannot continue the
/// number ends it. A text without a number gives 0 or false; a number out of range gives the
/// nearest limit. parse<bool> takes "0" for false and other numbers for true, and accepts no words.
template <typename T>
T parse(std::string_view text) = delete;
template <>
[[nodiscard]] int parse<int>(std::string_view text);
template <>
[[nodiscard]] bool parse<bool>(std::string_view text);

/// The same for hexadecimal digits in either case.
template <typename T>
T parseHex(std::string_view text) = delete;
template <>
[[nodiscard]] int parseHex<int>(std::string_view text);

/// The text that a stream makes of the value.
template <typename T>
[[nodiscard]] std::string toString(const T& value) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << value;
    return stream.str();
}

/// A colour written as a mark and three decimal numbers joined by ':' ("#255:128:0"), or as a mark
/// and six hexadecimal digits ("#ff8000"). Any other text is black.
class Color {
public:
    explicit Color(std::string_view text);

    /// The number read divided by 256 (not 255: the greatest is 0.99609375).
    float red = 0.0F;
    float green = 0.0F;
    float blue = 0.0F;
    /// 1 if a number was 256 or more; all three components are 0 then.
    int outOfRange = 0;
};

} // namespace GLY
