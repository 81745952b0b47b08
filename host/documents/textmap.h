// SPDX-License-Identifier: MIT
// A hash table by text that is searched by views.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace host {

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept {
        return std::hash<std::string_view>{}(text);
    }
};
template <typename Value>
using TextMap = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

} // namespace host
