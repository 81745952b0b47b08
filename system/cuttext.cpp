// SPDX-License-Identifier: MIT
// Cuts where a character begins.
#include "system/cuttext.h"

namespace sys {

std::string_view cutText(std::string_view text, std::size_t longest) {
    if (text.size() <= longest) {
        return text;
    }
    std::size_t end = longest;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return text.substr(0, end > 0 ? end : longest); // bytes that are no UTF-8 are cut anywhere
}

} // namespace sys
