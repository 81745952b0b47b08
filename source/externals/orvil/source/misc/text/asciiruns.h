// SPDX-License-Identifier: MIT
// Runs of ASCII, taken by the block: what the conversions share. Which unit of a word comes first
// is asked of std::endian; nothing else depends on the byte order.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace Orvil::AsciiRuns {

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

} // namespace Orvil::AsciiRuns
