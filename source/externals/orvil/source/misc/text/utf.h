// SPDX-License-Identifier: MIT
// Conversion between the Unicode encodings, and between narrow and wide texts.
#pragma once

#include <cstdint>
#include <locale>
#include <string>
#include <string_view>

namespace Orvil {

namespace UTF {

using UTF8 = std::uint8_t;
using UTF16 = char16_t;
using UTF32 = char32_t;

enum ConversionResult {
    conversionOK = 0,
    sourceExhausted = 1, ///< a sequence is cut off at the end of the source
    targetExhausted = 2,
    sourceIllegal = 3,
};

enum ConversionFlags { strict = 0, lenient = 1 };

constexpr UTF32 replacementCharacter = 0xFFFD;

} // namespace UTF

// The six conversions take the source from *sourceStart to sourceEnd, write to the target from
// *targetStart to targetEnd, and leave both start pointers behind what was consumed and produced.
// The target beyond may be overwritten up to its end. They follow the Unicode Consortium's
// reference routines of these names:
// - Values above U+10FFFF and surrogates that stand alone are illegal. Strict: the conversion stops
//   before one with sourceIllegal; only UTF-32 to UTF-16 leaves a value above U+10FFFF out, goes on
//   with the next and returns sourceIllegal at the end. Lenient: U+FFFD takes its place.
// - Ill-formed UTF-8, encoded surrogates among it, stops the conversion either way.
// - When the target is full, the source stays at the first unit that did not fit. A sequence that
//   the end of the source cuts off gives sourceExhausted, even where its bytes are illegal already.
// [any-thread] They share nothing.
[[nodiscard]] UTF::ConversionResult
ConvertUTF8toUTF16(const UTF::UTF8** sourceStart, const UTF::UTF8* sourceEnd,
                   UTF::UTF16** targetStart, UTF::UTF16* targetEnd, UTF::ConversionFlags flags);
[[nodiscard]] UTF::ConversionResult
ConvertUTF16toUTF8(const UTF::UTF16** sourceStart, const UTF::UTF16* sourceEnd,
                   UTF::UTF8** targetStart, UTF::UTF8* targetEnd, UTF::ConversionFlags flags);
[[nodiscard]] UTF::ConversionResult
ConvertUTF8toUTF32(const UTF::UTF8** sourceStart, const UTF::UTF8* sourceEnd,
                   UTF::UTF32** targetStart, UTF::UTF32* targetEnd, UTF::ConversionFlags flags);
[[nodiscard]] UTF::ConversionResult
ConvertUTF32toUTF8(const UTF::UTF32** sourceStart, const UTF::UTF32* sourceEnd,
                   UTF::UTF8** targetStart, UTF::UTF8* targetEnd, UTF::ConversionFlags flags);
[[nodiscard]] UTF::ConversionResult
ConvertUTF16toUTF32(const UTF::UTF16** sourceStart, const UTF::UTF16* sourceEnd,
                    UTF::UTF32** targetStart, UTF::UTF32* targetEnd, UTF::ConversionFlags flags);
[[nodiscard]] UTF::ConversionResult
ConvertUTF32toUTF16(const UTF::UTF32** sourceStart, const UTF::UTF32* sourceEnd,
                    UTF::UTF16** targetStart, UTF::UTF16* targetEnd, UTF::ConversionFlags flags);

/// Whether `length` bytes, as many as the first one asks for, are a well-formed sequence. False for
/// a length other than 1 to 4.
[[nodiscard]] bool isLegalUTF8(const UTF::UTF8* bytes, int length);
/// Whether a whole well-formed sequence stands at `start`, which is before `end`.
[[nodiscard]] bool isLegalUTF8Sequence(const UTF::UTF8* start, const UTF::UTF8* end);

/// The whole text, converted strictly; empty if any of it is illegal or cut off.
[[nodiscard]] std::string UTF16toUTF8(std::u16string_view text);
[[nodiscard]] std::u16string UTF8toUTF16(std::string_view text);

/// Widen and narrow character by character as the locale does. What it cannot widen becomes U+FFFD,
/// what it cannot narrow becomes "?".
[[nodiscard]] std::u16string makeUTF16(std::string_view text,
                                       const std::locale& locale = std::locale());
[[nodiscard]] std::wstring makeUNICODE(std::string_view text,
                                       const std::locale& locale = std::locale());
[[nodiscard]] std::string makeASCII(std::wstring_view text,
                                    const std::locale& locale = std::locale());

} // namespace Orvil
