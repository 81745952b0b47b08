// SPDX-License-Identifier: MIT
// The short cuts between UTF-8 and UTF-16: runs of ASCII by the block, and the two- and three-byte
// forms in line.
#pragma once

#include "misc/text/asciiruns.h"
#include "misc/text/utf.h"

#include <algorithm>
#include <cstddef>

namespace Orvil::UTFRuns {

using namespace AsciiRuns;
using namespace UTF;

constexpr UTF32 firstSurrogate = 0xD800;
constexpr UTF32 lastSurrogate = 0xDFFF;

constexpr bool isSurrogate(UTF32 c) {
    return c >= firstSurrogate && c <= lastSurrogate;
}

/// Advances both pointers as far as it gets.
inline void takeRuns(const UTF8*& source, const UTF8* sourceEnd, UTF16*& target,
                     const UTF16* targetEnd) {
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

/// Likewise.
inline void takeRuns(const UTF16*& source, const UTF16* sourceEnd, UTF8*& target,
                     const UTF8* targetEnd) {
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
        // As many as surely fit: one bound to look at instead of two.
        const UTF16* const fitting = s + std::min(sourceEnd - s, (targetEnd - t) / 3);
        while (s != fitting) {
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

} // namespace Orvil::UTFRuns
