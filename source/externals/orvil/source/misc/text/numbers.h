// SPDX-License-Identifier: MIT
// Numbers and truth values as text, both ways. All in the classic locale, whatever the process
// uses: these texts are read by machines.
#pragma once

#include <string>
#include <string_view>

namespace Orvil {

/// The value right-aligned with blanks to `width`; a real has up to `precision` significant
/// digits. 0 and 6 give plain output.
std::string toString(int value, unsigned width = 0, unsigned precision = 6);
std::string toString(unsigned value, unsigned width = 0, unsigned precision = 6);
std::string toString(long value, unsigned width = 0, unsigned precision = 6);
std::string toString(unsigned long value, unsigned width = 0, unsigned precision = 6);
std::string toString(long long value, unsigned width = 0, unsigned precision = 6);
std::string toString(unsigned long long value, unsigned width = 0, unsigned precision = 6);
std::string toString(float value, unsigned width = 0, unsigned precision = 6);
std::string toString(double value, unsigned width = 0, unsigned precision = 6);
/// "true" or "false".
std::string toString(bool value, unsigned width = 0, unsigned precision = 6);
/// A pointer would pass for a bool.
std::string toString(const void* value, unsigned width = 0, unsigned precision = 6) = delete;

/// Reads one value as a stream would: leading white space is skipped, and what follows the number
/// is ignored ("12abc" gives 12). `ok` tells whether there was a number that fits T; the result
/// is 0 otherwise. An unsigned type takes "-1" as its greatest value, as streams do.
/// For bool: one of "1", "T", "Y", "ON", "YES", "TRUE" or "0", "F", "N", "OFF", "NO", "FALSE" in
/// either case, after trim(); anything else is not ok and false.
/// Defined for bool, int, long, long long, their unsigned forms, float and double.
template <typename T>
T safeParse(std::string_view text, bool& ok);

/// As safeParse; 0 or false for everything that is not ok.
template <typename T>
T parse(std::string_view text) {
    bool ok = false;
    return safeParse<T>(text, ok);
}

template <>
bool safeParse<bool>(std::string_view text, bool& ok);
extern template int safeParse<int>(std::string_view text, bool& ok);
extern template unsigned safeParse<unsigned>(std::string_view text, bool& ok);
extern template long safeParse<long>(std::string_view text, bool& ok);
extern template unsigned long safeParse<unsigned long>(std::string_view text, bool& ok);
extern template long long safeParse<long long>(std::string_view text, bool& ok);
extern template unsigned long long safeParse<unsigned long long>(std::string_view text, bool& ok);
extern template float safeParse<float>(std::string_view text, bool& ok);
extern template double safeParse<double>(std::string_view text, bool& ok);

} // namespace Orvil
