// SPDX-License-Identifier: MIT
// Numbers and truth values as text, both ways. All in the classic locale, whatever the process
// uses: these texts are read by machines. T is bool, int, long, long long, one of their unsigned
// forms, float or double.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

namespace Orvil {

/// The value right-aligned with blanks to `width`; a real has up to `precision` significant
/// digits, a truth value is "true" or "false". 0 and 6 give plain output.
template <typename T>
requires std::is_arithmetic_v<T>
[[nodiscard]] std::string toString(T value, unsigned width = 0, unsigned precision = 6);

/// Reads one value as a stream would: leading white space is skipped, and what follows the number
/// is ignored ("12abc" gives 12). `ok` tells whether there was a number that fits T; the result
/// is 0 otherwise. An unsigned type takes "-1" as its greatest value, as streams do.
/// For bool: one of "1", "T", "Y", "ON", "YES", "TRUE" or "0", "F", "N", "OFF", "NO", "FALSE" in
/// either case, after trim(); anything else is not ok and false.
template <typename T>
T safeParse(std::string_view text, bool& ok);

/// As safeParse; 0 or false for everything that is not ok.
template <typename T>
[[nodiscard]] T parse(std::string_view text) {
    bool ok = false;
    return safeParse<T>(text, ok);
}

} // namespace Orvil
