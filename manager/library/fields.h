// SPDX-License-Identifier: MIT
// Lines of text fields separated by tabs, for the manager's own small files and for the talk with
// its font readers. Any byte may stand in a field: tab, line feed and backslash are written \t, \n
// and \\.
#pragma once

#include <charconv>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace manager {

/// One line, with its line feed.
[[nodiscard]] std::string joinFields(std::span<const std::string_view> fields);
[[nodiscard]] inline std::string joinFields(std::initializer_list<std::string_view> fields) {
    return joinFields(std::span(fields.begin(), fields.size()));
}

/// The fields of a line without its line feed; at least one. nullopt: an unknown escape.
[[nodiscard]] std::optional<std::vector<std::string>> splitFields(std::string_view line);

/// The lines of a text; a last line without a line feed is one too.
[[nodiscard]] std::vector<std::string_view> splitLines(std::string_view text);

/// A whole decimal number of type `Number` and nothing else.
template <class Number>
[[nodiscard]] std::optional<Number> toNumber(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, number);
    if (text.empty() || result.ec != std::errc{} || result.ptr != end) {
        return std::nullopt;
    }
    return number;
}

} // namespace manager
