// SPDX-License-Identifier: MIT
// What may stand in an XML document.
#include "xmltext.h"

#include "misc/text/utf.h"

#include <algorithm>
#include <cstddef>

namespace Protocol {

namespace {

bool isAllowedControl(char byte) {
    return byte == '\t' || byte == '\n' || byte == '\r';
}

bool isAllowedAscii(char byte) {
    return static_cast<unsigned char>(byte) >= 0x20 || isAllowedControl(byte);
}

/// The length that a sequence of UTF-8 with this first byte has.
std::size_t sequenceLength(unsigned char first) {
    constexpr unsigned char firstOfThree = 0xE0;
    constexpr unsigned char firstOfFour = 0xF0;
    return first < firstOfThree ? 2 : first < firstOfFour ? 3 : 4;
}

} // namespace

bool isXmlText(std::string_view text) {
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text.front());
        if (first < 0x80) {
            if (!isAllowedAscii(text.front())) {
                return false;
            }
            text.remove_prefix(1);
            continue;
        }
        const std::size_t length = sequenceLength(first);
        const std::string_view sequence = text.substr(0, length);
        const auto* const bytes = reinterpret_cast<const Orvil::UTF::UTF8*>(sequence.data());
        if (sequence.size() < length || !Orvil::isLegalUTF8(bytes, static_cast<int>(length)) ||
            sequence == "\xEF\xBF\xBE" || sequence == "\xEF\xBF\xBF") {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

} // namespace Protocol
