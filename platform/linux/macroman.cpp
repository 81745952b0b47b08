// SPDX-License-Identifier: MIT
// MacRoman by table: the lower half is ASCII, the upper half as listed (with the euro sign at 0xDB
// and the maker's logo, a private-use character, at 0xF0).
#include "macroman.h"

#include <glib.h>

#include <algorithm>
#include <array>

namespace platform {

namespace {

constexpr unsigned firstListed = 0x80;

constexpr std::array<char16_t, 128> upperHalf = {
    0x00C4, 0x00C5, 0x00C7, 0x00C9, 0x00D1, 0x00D6, 0x00DC, 0x00E1, // 0x80
    0x00E0, 0x00E2, 0x00E4, 0x00E3, 0x00E5, 0x00E7, 0x00E9, 0x00E8, //
    0x00EA, 0x00EB, 0x00ED, 0x00EC, 0x00EE, 0x00EF, 0x00F1, 0x00F3, // 0x90
    0x00F2, 0x00F4, 0x00F6, 0x00F5, 0x00FA, 0x00F9, 0x00FB, 0x00FC, //
    0x2020, 0x00B0, 0x00A2, 0x00A3, 0x00A7, 0x2022, 0x00B6, 0x00DF, // 0xA0
    0x00AE, 0x00A9, 0x2122, 0x00B4, 0x00A8, 0x2260, 0x00C6, 0x00D8, //
    0x221E, 0x00B1, 0x2264, 0x2265, 0x00A5, 0x00B5, 0x2202, 0x2211, // 0xB0
    0x220F, 0x03C0, 0x222B, 0x00AA, 0x00BA, 0x03A9, 0x00E6, 0x00F8, //
    0x00BF, 0x00A1, 0x00AC, 0x221A, 0x0192, 0x2248, 0x2206, 0x00AB, // 0xC0
    0x00BB, 0x2026, 0x00A0, 0x00C0, 0x00C3, 0x00D5, 0x0152, 0x0153, //
    0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0x00F7, 0x25CA, // 0xD0
    0x00FF, 0x0178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02, //
    0x2021, 0x00B7, 0x201A, 0x201E, 0x2030, 0x00C2, 0x00CA, 0x00C1, // 0xE0
    0x00CB, 0x00C8, 0x00CD, 0x00CE, 0x00CF, 0x00CC, 0x00D3, 0x00D4, //
    0xF8FF, 0x00D2, 0x00DA, 0x00DB, 0x00D9, 0x0131, 0x02C6, 0x02DC, // 0xF0
    0x00AF, 0x02D8, 0x02D9, 0x02DA, 0x00B8, 0x02DD, 0x02DB, 0x02C7, //
};

} // namespace

std::string macRomanToUtf8(std::string_view text) {
    std::string converted;
    converted.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < firstListed) {
            converted += character;
            continue;
        }
        std::array<char, 6> buffer{};
        const int length = g_unichar_to_utf8(upperHalf[byte - firstListed], buffer.data());
        converted.append(buffer.data(), static_cast<std::size_t>(length));
    }
    return converted;
}

std::optional<std::string> utf8ToMacRoman(const std::string& text) {
    std::string converted;
    converted.reserve(text.size());
    for (const char* at = text.c_str(); *at != '\0'; at = g_utf8_next_char(at)) {
        const gunichar character = g_utf8_get_char(at);
        if (character < firstListed) {
            converted += static_cast<char>(character);
            continue;
        }
        const auto* found = std::find(upperHalf.begin(), upperHalf.end(), character);
        if (found == upperHalf.end()) {
            return std::nullopt;
        }
        converted += static_cast<char>(firstListed + (found - upperHalf.begin()));
    }
    return converted;
}

} // namespace platform
