// SPDX-License-Identifier: MIT
// What may stand in an XML document.
#include "xmltext.h"

#include "misc/text/utf.h"

#include <algorithm>
#include <bit>

namespace Protocol {

namespace {

bool isControl(unsigned char byte) {
    return byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

} // namespace

bool isXmlText(std::string_view text) {
    while (!text.empty()) {
        const auto* const bytes = reinterpret_cast<const Orvil::UTF::UTF8*>(text.data());
        if (isControl(*bytes) || !Orvil::isLegalUTF8Sequence(bytes, bytes + text.size()) ||
            text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF")) {
            return false;
        }
        // The first byte of several has a one for each of them.
        text.remove_prefix(static_cast<std::size_t>(std::max(1, std::countl_one(*bytes))));
    }
    return true;
}

} // namespace Protocol
