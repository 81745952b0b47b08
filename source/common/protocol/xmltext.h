// SPDX-License-Identifier: MIT
// What may stand in an XML document.
#pragma once

#include <string_view>

namespace Protocol {

/// Whether the bytes are UTF-8 of characters that XML 1.0 allows: no control characters but tab,
/// line feed and carriage return, no surrogates, no U+FFFE and U+FFFF. [any-thread]
[[nodiscard]] bool isXmlText(std::string_view text);

} // namespace Protocol
