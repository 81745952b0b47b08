// SPDX-License-Identifier: MIT
// Making and reading the bus names of applications.
#include "busnames.h"

#include <charconv>

namespace platform {

namespace {

constexpr std::string_view prefix = "org.glyphora.AppleEvents1.";
constexpr std::string_view instanceElement = ".instance";

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
constexpr bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::string escaped(OSType signature) {
    constexpr std::string_view hexadecimal = "0123456789abcdef";
    std::string text;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        const auto byte = static_cast<unsigned char>(signature >> shift);
        const auto character = static_cast<char>(byte);
        if (isLetter(character) || (isDigit(character) && !text.empty())) {
            text += character;
        } else {
            text += {'_', hexadecimal[byte >> 4U], hexadecimal[byte & 15U]};
        }
    }
    return text;
}

std::optional<OSType> unescaped(std::string_view text) {
    OSType signature = 0;
    int count = 0;
    while (!text.empty()) {
        unsigned byte = static_cast<unsigned char>(text.front());
        std::size_t length = 1;
        if (text.front() == '_') {
            length = 3;
            if (text.size() < length ||
                std::from_chars(text.data() + 1, text.data() + length, byte, 16).ptr !=
                    text.data() + length) {
                return std::nullopt;
            }
        }
        signature = (signature << 8U) | byte;
        ++count;
        text.remove_prefix(length);
    }
    return count == 4 ? std::optional(signature) : std::nullopt;
}

} // namespace

std::string busNameOf(OSType signature) {
    return std::string(prefix) + escaped(signature);
}

std::string busNameOf(const InstanceName& instance) {
    return busNameOf(instance.signature) + std::string(instanceElement) +
           std::to_string(instance.processID);
}

std::optional<InstanceName> parseInstanceName(std::string_view busName) {
    if (!busName.starts_with(prefix)) {
        return std::nullopt;
    }
    const std::string_view rest = busName.substr(prefix.size());
    const std::size_t end = rest.find(instanceElement);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const auto signature = unescaped(rest.substr(0, end));
    const std::string_view digits = rest.substr(end + instanceElement.size());
    InstanceName instance{signature.value_or(0), 0};
    std::from_chars(digits.data(), digits.data() + digits.size(), instance.processID);
    // Comparing with what we would have made refuses every other spelling at once.
    const bool isExact = signature && instance.processID > 0 && busNameOf(instance) == busName;
    return isExact ? std::optional(instance) : std::nullopt;
}

} // namespace platform
