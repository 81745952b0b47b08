// SPDX-License-Identifier: MIT
// Decoding by iconv, and two kinds of records that say they are something else than they are.
#include "faces/namedecoder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>

namespace faces {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

// iconv has a Mac Roman from before the euro, with Greek letters for mathematical signs.
constexpr std::array<char32_t, 128> macRoman = {
    0xC4,   0xC5,   0xC7,   0xC9,   0xD1,   0xD6,  0xDC,   0xE1,   0xE0,   0xE2,   0xE4,   0xE3,
    0xE5,   0xE7,   0xE9,   0xE8,   0xEA,   0xEB,  0xED,   0xEC,   0xEE,   0xEF,   0xF1,   0xF3,
    0xF2,   0xF4,   0xF6,   0xF5,   0xFA,   0xF9,  0xFB,   0xFC,   0x2020, 0xB0,   0xA2,   0xA3,
    0xA7,   0x2022, 0xB6,   0xDF,   0xAE,   0xA9,  0x2122, 0xB4,   0xA8,   0x2260, 0xC6,   0xD8,
    0x221E, 0xB1,   0x2264, 0x2265, 0xA5,   0xB5,  0x2202, 0x2211, 0x220F, 0x3C0,  0x222B, 0xAA,
    0xBA,   0x3A9,  0xE6,   0xF8,   0xBF,   0xA1,  0xAC,   0x221A, 0x192,  0x2248, 0x2206, 0xAB,
    0xBB,   0x2026, 0xA0,   0xC0,   0xC3,   0xD5,  0x152,  0x153,  0x2013, 0x2014, 0x201C, 0x201D,
    0x2018, 0x2019, 0xF7,   0x25CA, 0xFF,   0x178, 0x2044, 0x20AC, 0x2039, 0x203A, 0xFB01, 0xFB02,
    0x2021, 0xB7,   0x201A, 0x201E, 0x2030, 0xC2,  0xCA,   0xC1,   0xCB,   0xC8,   0xCD,   0xCE,
    0xCF,   0xCC,   0xD3,   0xD4,   0xF8FF, 0xD2,  0xDA,   0xDB,   0xD9,   0x131,  0x2C6,  0x2DC,
    0xAF,   0x2D8,  0x2D9,  0x2DA,  0xB8,   0x2DD, 0x2DB,  0x2C7,
};

std::string fromMacRoman(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const char32_t character = byte < 0x80 ? byte : macRoman[byte - 0x80U];
        if (character < 0x80) {
            text += static_cast<char>(character);
        } else if (character < 0x800) {
            text += {static_cast<char>(0xC0U | character >> 6U),
                     static_cast<char>(0x80U | (character & 0x3FU))};
        } else {
            text += {static_cast<char>(0xE0U | character >> 12U),
                     static_cast<char>(0x80U | (character >> 6U & 0x3FU)),
                     static_cast<char>(0x80U | (character & 0x3FU))};
        }
    }
    return text;
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Most names, which are not worth a call of iconv; nullopt: it has other letters.
std::optional<std::string> asciiOfWide(std::string_view bytes) {
    std::string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        if (bytes[i] != 0 || static_cast<unsigned char>(bytes[i + 1]) >= 0x80) {
            return std::nullopt;
        }
        text += bytes[i + 1];
    }
    return text;
}

struct Decoded {
    std::string text;
    std::size_t faults = 0;
};

Decoded convert(iconv_t converter, std::string_view bytes, std::size_t unit) {
    Decoded result;
    std::string rest(bytes); // iconv does not write to what it reads, but asks for the right to
    char* from = rest.data();
    std::size_t left = rest.size();
    iconv(converter, nullptr, nullptr, nullptr, nullptr);
    for (;;) {
        std::array<char, 512>
            block; // NOLINT(cppcoreguidelines-pro-type-member-init): written first
        char* to = block.data();
        std::size_t room = block.size();
        const std::size_t count = iconv(converter, &from, &left, &to, &room);
        const int fault = count == static_cast<std::size_t>(-1) ? errno : 0;
        result.text.append(block.data(), block.size() - room);
        if (fault == EILSEQ) {
            result.text.append(replacement);
            ++result.faults;
            const std::size_t step = std::min(unit, left);
            from += step;
            left -= step;
        } else if (fault != E2BIG) {
            return result;
        }
    }
}

// Japanese fonts of old say that their names are Mac Roman.
bool isMostlyBeyondAscii(std::string_view bytes) {
    const auto count = std::count_if(bytes.begin(), bytes.end(),
                                     [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    return static_cast<std::size_t>(count) * 2 > bytes.size();
}

std::string trimmed(std::string text) {
    constexpr std::string_view blanks = " \t\r\n";
    text.resize(std::min(text.find('\0'), text.size()));
    text.resize(text.find_last_not_of(blanks) + 1);
    text.erase(0, text.find_first_not_of(blanks));
    return text;
}

} // namespace

iconv_t NameDecoder::converter(const char* encoding) {
    const auto [entry, isNew] = converters_.try_emplace(encoding);
    if (isNew) {
        const iconv_t opened = iconv_open("UTF-8", encoding);
        // NOLINTNEXTLINE(performance-no-int-to-ptr): iconv's way of saying no
        entry->second.reset(opened == reinterpret_cast<iconv_t>(-1) ? nullptr : opened);
    }
    return entry->second.get();
}

std::string decodeLiteral(std::string_view text) {
    const auto isDigit = [&](std::size_t at) {
        return at < text.size() && text[at] >= '0' && text[at] <= '7';
    };
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isEscape = text[i] == '\\' && i + 1 < text.size();
        if (isEscape && isDigit(i + 1) && isDigit(i + 2) && isDigit(i + 3)) {
            const int code = (text[i + 1] - '0') * 64 + (text[i + 2] - '0') * 8 + text[i + 3] - '0';
            if (code >= 0x20 && code < 0x7F) {
                decoded += static_cast<char>(code);
                i += 3;
                continue;
            }
        } else if (isEscape && (text[i + 1] == '(' || text[i + 1] == ')' || text[i + 1] == '\\')) {
            ++i;
        }
        decoded += text[i];
    }
    return decoded;
}

std::optional<std::string> NameDecoder::decode(Platform platform, unsigned encoding,
                                               std::string_view bytes) {
    const bool roman = platform == Platform::Macintosh && encoding == 0;
    const char* name = encodingName(platform, encoding);
    if (name == nullptr && !roman) {
        return std::nullopt;
    }
    if (!roman && std::string_view(name) == "UTF-16BE") {
        auto ascii = asciiOfWide(bytes);
        return trimmed(ascii ? std::move(*ascii) : convert(converter(name), bytes, 2).text);
    }
    // The encodings of East Asia have no NUL, but fonts that fill up each ASCII letter with one.
    std::string narrow(bytes);
    std::erase(narrow, '\0');
    if (isAscii(narrow)) {
        return trimmed(std::move(narrow));
    }
    if (roman && !isMostlyBeyondAscii(narrow)) {
        return trimmed(fromMacRoman(narrow));
    }
    const iconv_t known = converter(roman ? "CP932" : name);
    Decoded decoded = known == nullptr ? Decoded{{}, 1} : convert(known, narrow, 1);
    if (roman && decoded.faults > 0) {
        return trimmed(fromMacRoman(narrow));
    }
    return trimmed(std::move(decoded.text));
}

} // namespace faces
