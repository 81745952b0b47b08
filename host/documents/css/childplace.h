// SPDX-License-Identifier: MIT
// Which of its siblings an element is, as ":nth-child(2n+1)" and its like ask.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace host::css {

/// The places step * n + first, for n from 0 on; the first place is 1.
struct PlaceSeries {
    std::int64_t step = 0;
    std::int64_t first = 0;

    [[nodiscard]] bool holds(std::int64_t place) const noexcept;
};

/// Reads "odd", "even", "3", "2n + 1", "-n+3"; nothing for what is none of these.
[[nodiscard]] std::optional<PlaceSeries> readPlaceSeries(std::string_view text);

} // namespace host::css
