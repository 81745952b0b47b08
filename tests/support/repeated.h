// SPDX-License-Identifier: MIT
// Long texts made of short ones.
#pragma once

#include <string>
#include <string_view>

inline std::string repeated(std::string_view text, std::size_t count) {
    std::string result;
    while (count-- > 0) {
        result += text;
    }
    return result;
}
