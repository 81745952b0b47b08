// SPDX-License-Identifier: MIT
// The conversions. Each is the plain loop over one sequence at a time, behind short cuts that take
// runs of ASCII by the block and the two- and three-byte forms in line; whatever a short cut does
// not take, an error or an end that is near, falls to the plain step, which alone decides on
// results and positions.
#include "misc/text/utf.h"

#include "misc/text/utfruns.h"

#include <array>
#include <bit>
#include <cstddef>

namespace Orvil {

using namespace UTF;

namespace {

constexpr UTF32 firstLowSurrogate = 0xDC00;
constexpr UTF32 greatestInPlane0 = 0xFFFF;
constexpr UTF32 greatest = 0x10FFFF;

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

template <typename Unit, typename Read>
ConversionResult toUTF32(const Unit*& source, const Unit* sourceEnd, UTF32*& target,
                         const UTF32* targetEnd, Read read) {
    while (source != sourceEnd) {
        UTF32 value = 0;
        int length = 0;
        const ConversionResult result = read(source, value, length);
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
    return toUTF32(*sourceStart, sourceEnd, *targetStart, targetEnd,
                   [sourceEnd](const UTF8* source, UTF32& value, int& length) {
                       return readUTF8(source, sourceEnd, value, length);
                   });
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
    return toUTF32(*sourceStart, sourceEnd, *targetStart, targetEnd,
                   [sourceEnd, flags](const UTF16* source, UTF32& value, int& length) {
                       return readUTF16(source, sourceEnd, flags, value, length);
                   });
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

} // namespace Orvil
