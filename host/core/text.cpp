// SPDX-License-Identifier: MIT
// Checking and copying texts, byte by byte: they are short.
#include "host/core/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <glib.h>

namespace host {

namespace {

constexpr bool isContinuation(unsigned char byte) {
    return (byte & 0xC0U) == 0x80U;
}

constexpr bool isPrintable(char c) {
    return c >= ' ' && c <= '~';
}

} // namespace

bool isUtf8(std::string_view text) noexcept {
    const char* const end = text.data() + text.size();
    const char* stop = text.data();
    while (g_utf8_validate_len(stop, static_cast<gsize>(end - stop), &stop) == 0) {
        if (*stop != '\0') {
            return false;
        }
        ++stop; // a zero is a character like any other here
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
