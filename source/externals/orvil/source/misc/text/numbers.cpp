// SPDX-License-Identifier: MIT
// Formatting and lenient parsing of numbers. Integers go the short way; reals go through a stream,
// whose rules for what belongs to a number are not worth copying.
#include "misc/text/numbers.h"

#include "misc/text/strings.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iomanip>
#include <limits>
#include <locale>
#include <sstream>
#include <type_traits>

namespace Orvil {

namespace {

constexpr std::string_view whiteSpace = " \t\n\v\f\r";

std::string alignRight(std::string_view text, unsigned width) {
    return resize(std::string(text), width, ' ', false);
}

template <typename T>
std::string integerToString(T value, unsigned width) {
    std::array<char, std::numeric_limits<T>::digits10 + 3> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return alignRight({digits.data(), static_cast<std::size_t>(end - digits.data())}, width);
}

template <typename T>
std::string realToString(T value, unsigned width, unsigned precision) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << std::setw(static_cast<int>(width)) << std::setprecision(static_cast<int>(precision))
           << value;
    return stream.str();
}

template <typename T>
T parseReal(std::string_view text, bool& ok) {
    std::istringstream stream{std::string(text)};
    stream.imbue(std::locale::classic());
    T value{};
    ok = static_cast<bool>(stream >> value);
    return ok ? value : T{};
}

template <typename T>
T parseInteger(std::string_view text, bool& ok) {
    using Magnitude = std::make_unsigned_t<T>;
    ok = false;
    text.remove_prefix(std::min(text.find_first_not_of(whiteSpace), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    Magnitude magnitude{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), magnitude);
    if (result.ec != std::errc()) {
        return 0;
    }
    if constexpr (std::is_signed_v<T>) {
        const auto limit = static_cast<Magnitude>(std::numeric_limits<T>::max());
        if (magnitude > limit + (negative ? 1U : 0U)) {
            return 0;
        }
    }
    ok = true;
    return static_cast<T>(negative ? Magnitude{0} - magnitude : magnitude);
}

bool parseTruth(std::string_view text, bool& ok) {
    constexpr std::array<std::string_view, 6> trueTexts{"1", "T", "Y", "ON", "YES", "TRUE"};
    constexpr std::array<std::string_view, 6> falseTexts{"0", "F", "N", "OFF", "NO", "FALSE"};
    std::string word = trim(text);
    upCase(word);
    const bool isTrue = std::find(trueTexts.begin(), trueTexts.end(), word) != trueTexts.end();
    ok = isTrue || std::find(falseTexts.begin(), falseTexts.end(), word) != falseTexts.end();
    return isTrue;
}

} // namespace

template <typename T>
requires std::is_arithmetic_v<T> std::string toString(T value, unsigned width, unsigned precision) {
    if constexpr (std::is_same_v<T, bool>) {
        return alignRight(value ? "true" : "false", width);
    } else if constexpr (std::is_floating_point_v<T>) {
        return realToString(value, width, precision);
    } else {
        return integerToString(value, width);
    }
}

template <typename T>
T safeParse(std::string_view text, bool& ok) {
    if constexpr (std::is_same_v<T, bool>) {
        return parseTruth(text, ok);
    } else if constexpr (std::is_floating_point_v<T>) {
        return parseReal<T>(text, ok);
    } else {
        return parseInteger<T>(text, ok);
    }
}

#define ORVIL_NUMBER(T)                                                                            \
    template std::string toString(T value, unsigned width, unsigned precision);                    \
    template T safeParse(std::string_view text, bool& ok);
ORVIL_NUMBER(bool)
ORVIL_NUMBER(int)
ORVIL_NUMBER(unsigned)
ORVIL_NUMBER(long)
ORVIL_NUMBER(unsigned long)
ORVIL_NUMBER(long long)
ORVIL_NUMBER(unsigned long long)
ORVIL_NUMBER(float)
ORVIL_NUMBER(double)
#undef ORVIL_NUMBER

} // namespace Orvil
