// SPDX-License-Identifier: MIT
// Characters given as numbers, as style sheets and XML give them.
#pragma once

#include <array>
#include <cstdint>
#include <glib.h>
#include <string>

namespace host {

/// Appends one Unicode character to a text in UTF-8; U+FFFD in the place of what is no character.
inline void appendUtf8(std::string& text, std::uint32_t code) {
    std::array<char, 6> bytes{};
    const bool valid = code != 0 && g_unichar_validate(code) != 0;
    const int length = g_unichar_to_utf8(valid ? code : 0xFFFD, bytes.data());
    text.append(bytes.data(), static_cast<std::size_t>(length));
}

} // namespace host
