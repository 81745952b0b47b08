// SPDX-License-Identifier: MIT
// Which characters leave a mark.
#include "host/documents/svg/svgdrawing.h"

#include <cstddef>
#include <cstdint>

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
    for (std::size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            if (byte > 0x20 && byte != 0x7F) {
                return true;
            }
            ++i;
            continue;
        }
        const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
        std::uint32_t code = byte & (0x7FU >> length);
        for (std::size_t k = 1; k < length && i + k < text.size(); ++k) {
            code = code << 6 | (static_cast<unsigned char>(text[i + k]) & 0x3FU);
        }
        if (!isBlankCode(code)) {
            return true;
        }
        i += length;
    }
    return false;
}

} // namespace host::svg
