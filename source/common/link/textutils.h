// SPDX-License-Identifier: MIT
// Small text helpers of the plug-in's own sources. Their rules differ from those of the same names
// in Orvil. None reports an error or throws on bad input; all work in the classic locale. Any
// thread.
#pragma once

#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace GLY {

/// Does nothing: a place for an error box. By value, as callers hand texts over.
void showErrorMessage(std::string text);

/// What follows the last '/' or '\'; the whole path when there is neither.
std::string extractFilename(std::string_view path);

/// The pieces between occurrences of the whole `delimiter`, empty ones included; the rest after the
/// last one is always the final piece. An empty delimiter splits nothing. `flag` has no effect.
std::vector<std::string> tokenize(std::string_view text, std::string_view delimiter,
                                  bool flag = false);

/// Without the characters of " \t\r" at both ends. A line feed is not among them.
std::string trim(std::string_view text);

/// Reads a value as a stream does: white space first is skipped, what cannot continue the number
/// ends it. A text without a number gives 0 or false; a number out of range its nearest limit.
/// parse<bool>: "0" is false, other numbers are true; words are not accepted.
template <typename T>
T parse(std::string_view text) = delete;
template <>
int parse<int>(std::string_view text);
template <>
bool parse<bool>(std::string_view text);

/// The same for hexadecimal digits in either case.
template <typename T>
T parseHex(std::string_view text) = delete;
template <>
int parseHex<int>(std::string_view text);

/// What a stream makes of the value.
template <typename T>
std::string toString(const T& value) {
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
    /// 1 when a number was 256 or more; all three components are 0 then.
    int outOfRange = 0;
};

} // namespace GLY
