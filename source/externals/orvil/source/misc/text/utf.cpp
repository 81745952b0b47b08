// SPDX-License-Identifier: MIT
// The conversions. Each is the plain loop over one sequence at a time, behind short cuts that take
// runs of ASCII by the block and the two- and three-byte forms in line; whatever a short cut does
// not take, an error or an end that is near, falls to the plain step, which alone decides on
// results and positions.
#include "misc/text/utf.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <cwchar>

namespace Orvil {

using namespace UTF;

namespace {

constexpr UTF32 firstSurrogate = 0xD800;
constexpr UTF32 firstLowSurrogate = 0xDC00;
constexpr UTF32 lastSurrogate = 0xDFFF;
constexpr UTF32 greatestInPlane0 = 0xFFFF;
constexpr UTF32 greatest = 0x10FFFF;

constexpr bool isSurrogate(UTF32 c) {
    return c >= firstSurrogate && c <= lastSurrogate;
}
constexpr bool isHighSurrogate(UTF32 c) {
    return c >= firstSurrogate && c < firstLowSurrogate;
}
constexpr bool isLowSurrogate(UTF32 c) {
    return c >= firstLowSurrogate && c <= lastSurrogate;
}
constexpr bool isTrail(UTF8 byte) {
    return (byte & 0xC0U) == 0x80U;
}

/// The bytes that a first byte asks for. Those that never begin a sequence have their old meaning,
/// which decides between a cut-off and an illegal sequence.
constexpr int sequenceLength(UTF8 lead) {
    if (lead < 0xC0) {
        return 1;
    }
    const int ones = std::countl_one(lead);
    return ones < 6 ? ones : 6;
}

constexpr std::ptrdiff_t blockSize = 16;

/// The bits of a word of units that no ASCII unit has.
template <typename Source>
constexpr std::uint64_t nonAsciiBits = sizeof(Source) == 1 ? 0x8080808080808080U
                                                           : 0xFF80FF80FF80FF80U;
template <typename Source>
constexpr std::ptrdiff_t unitsPerWord = sizeof(std::uint64_t) / sizeof(Source);

template <typename Source>
std::uint64_t loadWord(const Source* source) {
    std::uint64_t word = 0;
    std::memcpy(&word, source, sizeof word);
    return word;
}

template <std::ptrdiff_t count, typename Source>
bool isAscii(const Source* source) {
    std::uint64_t all = 0;
    for (std::ptrdiff_t i = 0; i < count; i += unitsPerWord<Source>) {
        all |= loadWord(source + i);
    }
    return (all & nonAsciiBits<Source>) == 0;
}

template <std::ptrdiff_t count, typename Source, typename Target>
void copyUnits(const Source* source, Target* target) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        target[i] = static_cast<Target>(source[i]);
    }
}

/// Copies a block of units of another width, and tells how many at its start are ASCII.
template <typename Source, typename Target>
std::ptrdiff_t copyBlock(const Source* source, Target* target) {
    copyUnits<blockSize>(source, target);
    for (std::ptrdiff_t i = 0; i < blockSize; i += unitsPerWord<Source>) {
        const std::uint64_t word = loadWord(source + i) & nonAsciiBits<Source>;
        if (word != 0) {
            const int bits = std::endian::native == std::endian::little ? std::countr_zero(word)
                                                                        : std::countl_zero(word);
            return i + bits / static_cast<int>(8 * sizeof(Source));
        }
    }
    return blockSize;
}

/// Advances over ASCII as long as `count` units at a time fit on both sides.
template <std::ptrdiff_t count, typename Source, typename Target>
void takeAscii(const Source*& source, const Source* sourceEnd, Target*& target,
               const Target* targetEnd) {
    while (sourceEnd - source >= count && targetEnd - target >= count && isAscii<count>(source)) {
        copyUnits<count>(source, target);
        source += count;
        target += count;
    }
}

/// The same for what is left, down to single units.
template <typename Source, typename Target>
void takeLastAscii(const Source*& source, const Source* sourceEnd, Target*& target,
                   const Target* targetEnd) {
    takeAscii<8>(source, sourceEnd, target, targetEnd);
    while (source != sourceEnd && target != targetEnd && *source < 0x80) {
        *target++ = static_cast<Target>(*source++);
    }
}

/// Reads the sequence at `source`, which is before `end`.
ConversionResult readUTF8(const UTF8* source, const UTF8* end, UTF32& value, int& length) {
    length = sequenceLength(*source);
    if (length > end - source) {
        return sourceExhausted;
    }
    if (!isLegalUTF8(source, length)) {
        return sourceIllegal;
    }
    value = length == 1 ? *source : *source & (0x7FU >> length);
    for (int i = 1; i < length; ++i) {
        value = (value << 6U) | (source[i] & 0x3FU);
    }
    return conversionOK;
}

/// Reads the character at `source`, which is before `end`.
ConversionResult readUTF16(const UTF16* source, const UTF16* end, ConversionFlags flags,
                           UTF32& value, int& length) {
    value = *source;
    length = 1;
    if (!isSurrogate(value)) {
        return conversionOK;
    }
    if (isHighSurrogate(value)) {
        if (end - source < 2) {
            return sourceExhausted;
        }
        if (isLowSurrogate(source[1])) {
            value = ((value - firstSurrogate) << 10U) + (source[1] - firstLowSurrogate) + 0x10000U;
            length = 2;
            return conversionOK;
        }
    }
    value = replacementCharacter;
    return flags == strict ? sourceIllegal : conversionOK;
}

constexpr int lengthInUTF8(UTF32 value) {
    if (value < 0x80) {
        return 1;
    }
    if (value < 0x800) {
        return 2;
    }
    return value <= greatestInPlane0 ? 3 : 4;
}

void writeUTF8(UTF32 value, int length, UTF8* target) {
    constexpr std::array<unsigned, 5> leadMarks{0, 0, 0xC0, 0xE0, 0xF0};
    for (int i = length - 1; i > 0; --i) {
        target[i] = static_cast<UTF8>(0x80U | (value & 0x3FU));
        value >>= 6U;
    }
    target[0] = static_cast<UTF8>(leadMarks[static_cast<std::size_t>(length)] | value);
}

void writePair(UTF32 value, UTF16* target) {
    target[0] = static_cast<UTF16>(((value - 0x10000U) >> 10U) + firstSurrogate);
    target[1] = static_cast<UTF16>((value & 0x3FFU) + firstLowSurrogate);
}

// The short cuts advance both pointers as far as they get.

void takeRuns(const UTF8*& source, const UTF8* sourceEnd, UTF16*& target, const UTF16* targetEnd) {
    const UTF8* s = source;
    UTF16* t = target;
    while (sourceEnd - s >= blockSize && targetEnd - t >= blockSize) {
        const std::ptrdiff_t ascii = copyBlock(s, t);
        s += ascii;
        t += ascii;
        if (ascii == blockSize) {
            takeAscii<64>(s, sourceEnd, t, targetEnd);
            continue;
        }
        const UTF8* const before = s;
        while (sourceEnd - s >= 3 && t != targetEnd) {
            const unsigned first = s[0];
            const unsigned second = s[1] ^ 0x80U;
            if ((first & 0xF0U) == 0xE0U) {
                const unsigned third = s[2] ^ 0x80U;
                const unsigned value = ((first & 0x0FU) << 12U) | (second << 6U) | third;
                if ((second | third) > 0x3FU || value < 0x800U || isSurrogate(value)) {
                    break;
                }
                *t++ = static_cast<UTF16>(value);
                s += 3;
            } else if (first - 0xC2U <= 0xDFU - 0xC2U && second <= 0x3FU) {
                *t++ = static_cast<UTF16>(((first & 0x1FU) << 6U) | second);
                s += 2;
            } else {
                break;
            }
        }
        if (s == before) {
            break;
        }
    }
    takeLastAscii(s, sourceEnd, t, targetEnd);
    source = s;
    target = t;
}

void takeRuns(const UTF16*& source, const UTF16* sourceEnd, UTF8*& target, const UTF8* targetEnd) {
    const UTF16* s = source;
    UTF8* t = target;
    while (sourceEnd - s >= blockSize && targetEnd - t >= blockSize) {
        const std::ptrdiff_t ascii = copyBlock(s, t);
        s += ascii;
        t += ascii;
        if (ascii == blockSize) {
            takeAscii<64>(s, sourceEnd, t, targetEnd);
            continue;
        }
        const UTF16* const before = s;
        while (s != sourceEnd && targetEnd - t >= 3) {
            const UTF32 value = *s;
            if (value >= 0x800U && !isSurrogate(value)) {
                t[0] = static_cast<UTF8>(0xE0U | (value >> 12U));
                t[1] = static_cast<UTF8>(0x80U | ((value >> 6U) & 0x3FU));
                t[2] = static_cast<UTF8>(0x80U | (value & 0x3FU));
                t += 3;
            } else if (value - 0x80U < 0x800U - 0x80U) {
                t[0] = static_cast<UTF8>(0xC0U | (value >> 6U));
                t[1] = static_cast<UTF8>(0x80U | (value & 0x3FU));
                t += 2;
            } else {
                break;
            }
            ++s;
        }
        if (s == before) {
            break;
        }
    }
    takeLastAscii(s, sourceEnd, t, targetEnd);
    source = s;
    target = t;
}

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

bool isLegalUTF8(const UTF8* bytes, int length) {
    if (length < 1 || length > 4) {
        return false;
    }
    const UTF8 lead = bytes[0];
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4) {
        return false;
    }
    for (int i = 1; i < length; ++i) {
        if (!isTrail(bytes[i])) {
            return false;
        }
    }
    if (length == 1) {
        return true;
    }
    switch (lead) {
    case 0xE0:
        return bytes[1] >= 0xA0;
    case 0xED:
        return bytes[1] <= 0x9F;
    case 0xF0:
        return bytes[1] >= 0x90;
    case 0xF4:
        return bytes[1] <= 0x8F;
    default:
        return true;
    }
}

bool isLegalUTF8Sequence(const UTF8* start, const UTF8* end) {
    const int length = sequenceLength(*start);
    return length <= end - start && isLegalUTF8(start, length);
}

ConversionResult ConvertUTF8toUTF16(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF16** targetStart, UTF16* targetEnd,
                                    ConversionFlags /*flags*/) {
    const UTF8*& source = *sourceStart;
    UTF16*& target = *targetStart;
    for (;;) {
        takeRuns(source, sourceEnd, target, targetEnd);
        if (source == sourceEnd) {
            return conversionOK;
        }
        UTF32 value = 0;
        int length = 0;
        const ConversionResult result = readUTF8(source, sourceEnd, value, length);
        if (result != conversionOK) {
            return result;
        }
        if (targetEnd - target < (value > greatestInPlane0 ? 2 : 1)) {
            return targetExhausted;
        }
        if (value > greatestInPlane0) {
            writePair(value, target);
            target += 2;
        } else {
            *target++ = static_cast<UTF16>(value);
        }
        source += length;
    }
}

ConversionResult ConvertUTF16toUTF8(const UTF16** sourceStart, const UTF16* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags) {
    const UTF16*& source = *sourceStart;
    UTF8*& target = *targetStart;
    for (;;) {
        takeRuns(source, sourceEnd, target, targetEnd);
        if (source == sourceEnd) {
            return conversionOK;
        }
        UTF32 value = 0;
        int length = 0;
        const ConversionResult result = readUTF16(source, sourceEnd, flags, value, length);
        if (result != conversionOK) {
            return result;
        }
        const int bytes = lengthInUTF8(value);
        if (targetEnd - target < bytes) {
            return targetExhausted;
        }
        writeUTF8(value, bytes, target);
        target += bytes;
        source += length;
    }
}

ConversionResult ConvertUTF8toUTF32(const UTF8** sourceStart, const UTF8* sourceEnd,
                                    UTF32** targetStart, UTF32* targetEnd,
                                    ConversionFlags /*flags*/) {
    const UTF8*& source = *sourceStart;
    UTF32*& target = *targetStart;
    while (source != sourceEnd) {
        UTF32 value = 0;
        int length = 0;
        const ConversionResult result = readUTF8(source, sourceEnd, value, length);
        if (result != conversionOK) {
            return result;
        }
        if (target == targetEnd) {
            return targetExhausted;
        }
        *target++ = value;
        source += length;
    }
    return conversionOK;
}

ConversionResult ConvertUTF32toUTF8(const UTF32** sourceStart, const UTF32* sourceEnd,
                                    UTF8** targetStart, UTF8* targetEnd, ConversionFlags flags) {
    const UTF32*& source = *sourceStart;
    UTF8*& target = *targetStart;
    while (source != sourceEnd) {
        UTF32 value = *source;
        if (isSurrogate(value) || value > greatest) {
            if (flags == strict) {
                return sourceIllegal;
            }
            value = replacementCharacter;
        }
        const int bytes = lengthInUTF8(value);
        if (targetEnd - target < bytes) {
            return targetExhausted;
        }
        writeUTF8(value, bytes, target);
        target += bytes;
        ++source;
    }
    return conversionOK;
}

ConversionResult ConvertUTF16toUTF32(const UTF16** sourceStart, const UTF16* sourceEnd,
                                     UTF32** targetStart, UTF32* targetEnd, ConversionFlags flags) {
    const UTF16*& source = *sourceStart;
    UTF32*& target = *targetStart;
    while (source != sourceEnd) {
        UTF32 value = 0;
        int length = 0;
        const ConversionResult result = readUTF16(source, sourceEnd, flags, value, length);
        if (result != conversionOK) {
            return result;
        }
        if (target == targetEnd) {
            return targetExhausted;
        }
        *target++ = value;
        source += length;
    }
    return conversionOK;
}

ConversionResult ConvertUTF32toUTF16(const UTF32** sourceStart, const UTF32* sourceEnd,
                                     UTF16** targetStart, UTF16* targetEnd, ConversionFlags flags) {
    const UTF32*& source = *sourceStart;
    UTF16*& target = *targetStart;
    ConversionResult result = conversionOK;
    while (source != sourceEnd) {
        if (target == targetEnd) {
            return targetExhausted;
        }
        UTF32 value = *source;
        if (value > greatest && flags == strict) {
            result = sourceIllegal;
            ++source;
            continue;
        }
        if (isSurrogate(value) && flags == strict) {
            return sourceIllegal;
        }
        if (isSurrogate(value) || value > greatest) {
            value = replacementCharacter;
        }
        if (value > greatestInPlane0) {
            if (targetEnd - target < 2) {
                return targetExhausted;
            }
            writePair(value, target);
            target += 2;
        } else {
            *target++ = static_cast<UTF16>(value);
        }
        ++source;
    }
    return result;
}

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
