// SPDX-License-Identifier: MIT
// Conversions of whole texts.
#include "misc/text/utf.h"

#include <array>
#include <cstddef>
#include <cwchar>

namespace Orvil {

using namespace UTF;

namespace {

/// Converts a whole text strictly, piece by piece through a buffer on the stack: no text of the
/// greatest possible length is ever filled, and a short one costs one allocation at most.
template <typename Target, typename Source, typename Convert>
Target convertWhole(const Source* source, std::size_t length, Convert convert) {
    using Char = typename Target::value_type;
    using Unit = std::conditional_t<sizeof(Char) == 1, UTF8, UTF16>;
    std::array<Unit, 512> buffer; // NOLINT: filled by the conversion
    const Source* const end = source + length;
    Target text;
    for (;;) {
        Unit* target = buffer.data();
        const ConversionResult result =
            convert(&source, end, &target, buffer.data() + buffer.size(), strict);
        if (result != conversionOK && result != targetExhausted) {
            return {};
        }
        const auto produced = static_cast<std::size_t>(target - buffer.data());
        if (result == targetExhausted && text.empty()) {
            text.reserve(length + length / 8);
        }
        text.append(reinterpret_cast<const Char*>(buffer.data()), produced);
        if (result == conversionOK) {
            return text;
        }
    }
}

} // namespace

std::string UTF16toUTF8(std::u16string_view text) {
    return convertWhole<std::string>(text.data(), text.size(), ConvertUTF16toUTF8);
}

std::u16string UTF8toUTF16(std::string_view text) {
    return convertWhole<std::u16string>(reinterpret_cast<const UTF8*>(text.data()), text.size(),
                                        ConvertUTF8toUTF16);
}

std::u16string makeUTF16(std::string_view text, const std::locale& locale) {
    std::u16string wide;
    for (const wchar_t character : makeUNICODE(text, locale)) {
        wide += static_cast<char16_t>(character);
    }
    return wide;
}

std::wstring makeUNICODE(std::string_view text, const std::locale& locale) {
    const auto& facet = std::use_facet<std::ctype<wchar_t>>(locale);
    std::wstring wide;
    for (const char character : text) {
        const wchar_t widened = facet.widen(character);
        wide += static_cast<std::wint_t>(widened) == WEOF ? static_cast<wchar_t>(0xFFFD) : widened;
    }
    return wide;
}

std::string makeASCII(std::wstring_view text, const std::locale& locale) {
    const auto& facet = std::use_facet<std::ctype<wchar_t>>(locale);
    std::string narrow;
    for (const wchar_t character : text) {
        narrow += facet.narrow(character, '?');
    }
    return narrow;
}

} // namespace Orvil
