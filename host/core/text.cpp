// SPDX-License-Identifier: MIT
// Checking and copying texts, byte by byte: they are short.
#include "host/core/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace host {

namespace {

constexpr bool isContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

constexpr bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

/// The length of the character that begins here; 0 when it is malformed.
std::size_t characterLength(std::string_view text) noexcept {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) {
        return 1;
    }
    // By the lead: the length, and the range of the second byte, which excludes overlong forms,
    // surrogates and what lies beyond the last character.
    struct Form {
        unsigned char first, last;
        std::size_t length;
        unsigned char lowest, highest;
    };
    static constexpr std::array<Form, 8> forms{{{0xC2, 0xDF, 2, 0x80, 0xBF},
                                                {0xE0, 0xE0, 3, 0xA0, 0xBF},
                                                {0xE1, 0xEC, 3, 0x80, 0xBF},
                                                {0xED, 0xED, 3, 0x80, 0x9F},
                                                {0xEE, 0xEF, 3, 0x80, 0xBF},
                                                {0xF0, 0xF0, 4, 0x90, 0xBF},
                                                {0xF1, 0xF3, 4, 0x80, 0xBF},
                                                {0xF4, 0xF4, 4, 0x80, 0x8F}}};
    const auto form = std::find_if(forms.begin(), forms.end(), [&](const Form& candidate) {
        return lead >= candidate.first && lead <= candidate.last;
    });
    if (form == forms.end() || text.size() < form->length) {
        return 0;
    }
    const auto second = static_cast<unsigned char>(text[1]);
    if (second < form->lowest || second > form->highest) {
        return 0;
    }
    const auto rest = text.substr(2, form->length - 2);
    const bool whole = std::all_of(rest.begin(), rest.end(), [](char byte) {
        return isContinuation(static_cast<unsigned char>(byte));
    });
    return whole ? form->length : 0;
}

} // namespace

bool isUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (length == 0) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

void copyText(std::string_view text, char* buffer, std::int32_t size) noexcept {
    std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    while (length > 0 && length < text.size() &&
           isContinuation(static_cast<unsigned char>(text[length]))) {
        --length;
    }
    std::memcpy(buffer, text.data(), length);
    buffer[length] = '\0';
}

std::string errorText(SPErr error) {
    const auto bits = static_cast<std::uint32_t>(error);
    std::string characters;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        characters += static_cast<char>((bits >> shift) & 0xFFU);
    }
    const bool packed = std::all_of(characters.begin(), characters.end(), isPrintable);
    return packed ? "'" + characters + "'" : std::to_string(error);
}

bool readError(std::string_view text, SPErr& error) noexcept {
    if (text.size() == 6 && text.front() == '\'' && text.back() == '\'') {
        text = text.substr(1, 4);
    }
    const char* const end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, error);
    if (problem == std::errc() && stop == end) {
        return true;
    }
    if (text.size() != 4) {
        return false;
    }
    error = FourChars({text[0], text[1], text[2], text[3], '\0'});
    return true;
}

} // namespace host
