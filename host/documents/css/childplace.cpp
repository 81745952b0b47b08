// SPDX-License-Identifier: MIT
#include "host/documents/css/childplace.h"

#include "host/documents/css/css.h"

#include <charconv>
#include <string>

namespace host::css {
namespace {

/// All of `text` as a whole number with or without a sign; `text` has at most 9 digits.
std::optional<std::int64_t> wholeNumber(std::string_view text) {
    const bool isSigned = text.starts_with('+');
    text.remove_prefix(isSigned ? 1 : 0);
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    constexpr std::size_t longest = 10;
    if (error != std::errc() || end != text.data() + text.size() || text.size() > longest ||
        (isSigned && text.front() == '-')) {
        return std::nullopt;
    }
    return number;
}

} // namespace

bool PlaceSeries::holds(std::int64_t place) const noexcept {
    const std::int64_t away = place - first;
    return step == 0 ? away == 0 : away % step == 0 && away / step >= 0;
}

std::optional<PlaceSeries> readPlaceSeries(std::string_view text) {
    text = trim(text);
    if (equalsIgnoringCase(text, "odd")) {
        return PlaceSeries{2, 1};
    }
    if (equalsIgnoringCase(text, "even")) {
        return PlaceSeries{2, 0};
    }
    const std::size_t n = text.find_first_of("nN");
    if (n == std::string_view::npos) {
        const auto only = wholeNumber(text);
        return only ? std::optional(PlaceSeries{0, *only}) : std::nullopt;
    }
    const std::string_view factor = text.substr(0, n);
    const auto step = factor.empty() || factor == "+" ? std::optional<std::int64_t>(1)
                      : factor == "-"                 ? std::optional<std::int64_t>(-1)
                                                      : wholeNumber(factor);
    std::string_view rest = trim(text.substr(n + 1));
    if (!step || rest.empty()) {
        return step ? std::optional(PlaceSeries{*step, 0}) : std::nullopt;
    }
    const char sign = rest.front();
    if (sign != '+' && sign != '-') {
        return std::nullopt;
    }
    rest = trim(rest.substr(1));
    const auto first =
        rest.starts_with('+') || rest.starts_with('-') ? std::nullopt : wholeNumber(rest);
    if (!first) {
        return std::nullopt;
    }
    return PlaceSeries{*step, sign == '-' ? -*first : *first};
}

} // namespace host::css
