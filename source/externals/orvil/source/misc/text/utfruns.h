// SPDX-License-Identifier: MIT
// The short cuts between UTF-8 and UTF-16: runs of ASCII by the block, and the two- and three-byte
// forms in line. Only the order of units within a word depends on the byte order.
#pragma once

#include "misc/text/utf.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Orvil::UTF {

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

/// Advances over the ASCII that is left, down to single units.
template <typename Source, typename Target>
void takeLastAscii(const Source*& source, const Source* sourceEnd, Target*& target,
                   const Target* targetEnd) {
    takeAscii<8>(source, sourceEnd, target, targetEnd);
    while (source != sourceEnd && target != targetEnd && *source < 0x80) {
        *target++ = static_cast<Target>(*source++);
    }
}

constexpr UTF32 firstSurrogate = 0xD800;
constexpr UTF32 lastSurrogate = 0xDFFF;

constexpr bool isSurrogate(UTF32 c) {
    return c >= firstSurrogate && c <= lastSurrogate;
}

/// Advances over two- and three-byte forms, up to the first character of another kind.
inline void takeOthers(const UTF8*& source, const UTF8* sourceEnd, UTF16*& target,
                       const UTF16* targetEnd) {
    while (sourceEnd - source >= 3 && target != targetEnd) {
        const unsigned first = source[0];
        const unsigned second = source[1] ^ 0x80U;
        if ((first & 0xF0U) == 0xE0U) {
            const unsigned third = source[2] ^ 0x80U;
            const unsigned value = ((first & 0x0FU) << 12U) | (second << 6U) | third;
            if ((second | third) > 0x3FU || value < 0x800U || isSurrogate(value)) {
                return;
            }
            *target++ = static_cast<UTF16>(value);
            source += 3;
        } else if (first - 0xC2U <= 0xDFU - 0xC2U && second <= 0x3FU) {
            *target++ = static_cast<UTF16>(((first & 0x1FU) << 6U) | second);
            source += 2;
        } else {
            return;
        }
    }
}

/// Advances over characters that take two or three bytes, up to the first of another kind.
inline void takeOthers(const UTF16*& source, const UTF16* sourceEnd, UTF8*& target,
                       const UTF8* targetEnd) {
    // As many as surely fit: one bound to look at instead of two.
    const UTF16* const fitting = source + std::min(sourceEnd - source, (targetEnd - target) / 3);
    for (; source != fitting; ++source) {
        const UTF32 value = *source;
        if (value >= 0x800U && !isSurrogate(value)) {
            target[0] = static_cast<UTF8>(0xE0U | (value >> 12U));
            target[1] = static_cast<UTF8>(0x80U | ((value >> 6U) & 0x3FU));
            target[2] = static_cast<UTF8>(0x80U | (value & 0x3FU));
            target += 3;
        } else if (value - 0x80U < 0x800U - 0x80U) {
            target[0] = static_cast<UTF8>(0xC0U | (value >> 6U));
            target[1] = static_cast<UTF8>(0x80U | (value & 0x3FU));
            target += 2;
        } else {
            return;
        }
    }
}

/// Advances both pointers as far as the short cuts get.
template <typename Source, typename Target>
inline void takeRuns(const Source*& source, const Source* sourceEnd, Target*& target,
                     const Target* targetEnd) {
    const Source* s = source;
    Target* t = target;
    while (sourceEnd - s >= blockSize && targetEnd - t >= blockSize) {
        const std::ptrdiff_t ascii = copyBlock(s, t);
        s += ascii;
        t += ascii;
        if (ascii == blockSize) {
            takeAscii<64>(s, sourceEnd, t, targetEnd);
            continue;
        }
        const Source* const before = s;
        takeOthers(s, sourceEnd, t, targetEnd);
        if (s == before) {
            break;
        }
    }
    takeLastAscii(s, sourceEnd, t, targetEnd);
    source = s;
    target = t;
}

} // namespace Orvil::UTF
