// SPDX-License-Identifier: MIT
#include "host/documents/textline.h"

#include <cstddef>

namespace host {

std::string lineOf(std::string_view text) {
    constexpr std::size_t mostCharacters = 80;
    std::string line;
    std::size_t characters = 0;
    std::size_t blank = 0;
    for (const char c : text) {
        const bool isBlank = c == ' ' || (c >= '\t' && c <= '\r');
        if (isBlank && (line.empty() || line.back() == ' ')) {
            continue;
        }
        const bool begins = (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
        if (begins && characters++ == mostCharacters) {
            line.resize(blank > line.size() / 2 ? blank : line.size());
            break;
        }
        blank = isBlank ? line.size() : blank;
        line += isBlank ? ' ' : c;
    }
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

} // namespace host
