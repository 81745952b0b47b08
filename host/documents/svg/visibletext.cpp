// SPDX-License-Identifier: MIT
// Which characters leave a mark.
#include "host/documents/svg/svgdrawing.h"

#include <cstdint>
#include <glib.h>

namespace host::svg {
namespace {

/// Characters beyond ASCII that leave no mark: blanks, joiners, direction marks, selectors.
bool isBlankCode(std::uint32_t code) {
    return code == 0x85 || code == 0xA0 || code == 0xAD || code == 0x1680 || code == 0x180E ||
           (code >= 0x2000 && code <= 0x200F) || (code >= 0x2028 && code <= 0x202F) ||
           (code >= 0x205F && code <= 0x206F) || code == 0x3000 ||
           (code >= 0xFE00 && code <= 0xFE0F) || code == 0xFEFF ||
           (code >= 0xE0000 && code <= 0xE0FFF);
}

} // namespace

bool hasVisibleCharacter(std::string_view text) {
    const char* const end = text.data() + text.size();
    for (const char* c = text.data(); c < end; c = g_utf8_next_char(c)) {
        const gunichar code = g_utf8_get_char(c);
        if (code > 0x20 && code != 0x7F && !isBlankCode(code)) {
            return true;
        }
    }
    return false;
}

} // namespace host::svg
