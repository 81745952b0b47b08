// SPDX-License-Identifier: MIT
// The tables of a polynomial, and the sums by slices and by folding.
#include "misc/checksum/crc32tables.h"

#include "misc/checksum/crc32.h"

#if defined(__x86_64__) || defined(__i386__)
#define ORVIL_CAN_FOLD 1
#include <immintrin.h>
#endif

namespace Orvil {

namespace {

/// x to the power of `exponent` modulo the polynomial, in the form that folding multiplies by.
std::uint64_t foldingConstant(std::uint32_t polynomial, unsigned exponent) {
    std::uint32_t remainder = 1;
    for (unsigned i = 0; i < exponent; ++i) {
        const bool carry = (remainder & 0x80000000U) != 0;
        remainder = (remainder << 1U) ^ (carry ? polynomial : 0U);
    }
    return std::uint64_t{CRC32::reflect(remainder, 32)} << 1U;
}

} // namespace

CRC32Tables::CRC32Tables(std::uint32_t polynomial)
    : slices(), foldBy512{foldingConstant(polynomial, 512 + 32),
                          foldingConstant(polynomial, 512 - 32)},
      foldBy128{foldingConstant(polynomial, 128 + 32), foldingConstant(polynomial, 128 - 32)} {
    const std::uint32_t reflected = CRC32::reflect(polynomial, 32);
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t value = byte;
        for (int bit = 0; bit < 8; ++bit) {
            value = (value >> 1U) ^ ((value & 1U) != 0 ? reflected : 0U);
        }
        slices[0][byte] = value;
    }
    for (std::size_t k = 1; k < slices.size(); ++k) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t before = slices[k - 1][byte];
            slices[k][byte] = (before >> 8U) ^ slices[0][before & 0xFFU];
        }
    }
}

std::uint32_t crc32BySlices(const CRC32Tables& tables, std::uint32_t value,
                            const unsigned char* bytes, std::size_t count) {
    const auto& slices = tables.slices;
    for (; count >= 16; count -= 16, bytes += 16) {
        // The register meets the first four bytes; the order of bytes in memory does not matter.
        std::uint32_t next = slices[15][bytes[0] ^ (value & 0xFFU)] ^
                             slices[14][bytes[1] ^ ((value >> 8U) & 0xFFU)] ^
                             slices[13][bytes[2] ^ ((value >> 16U) & 0xFFU)] ^
                             slices[12][bytes[3] ^ (value >> 24U)];
        for (std::size_t i = 4; i < 16; ++i) {
            next ^= slices[15 - i][bytes[i]];
        }
        value = next;
    }
    for (; count > 0; --count, ++bytes) {
        value = (value >> 8U) ^ slices[0][(value ^ *bytes) & 0xFFU];
    }
    return value;
}

#ifdef ORVIL_CAN_FOLD

bool canFoldCRC32() {
    return __builtin_cpu_supports("pclmul") != 0 && __builtin_cpu_supports("sse2") != 0;
}

namespace {

__attribute__((target("pclmul,sse2"))) inline __m128i loadBlock(const unsigned char* bytes) {
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

/// `block`, carried over the distance of `constants`, and the block that stands there.
__attribute__((target("pclmul,sse2"))) inline __m128i fold(__m128i block, __m128i constants,
                                                           __m128i next) {
    return _mm_xor_si128(_mm_xor_si128(_mm_clmulepi64_si128(block, constants, 0x00),
                                       _mm_clmulepi64_si128(block, constants, 0x11)),
                         next);
}

} // namespace

__attribute__((target("pclmul,sse2"))) std::uint32_t crc32ByFolding(const CRC32Tables& tables,
                                                                    std::uint32_t value,
                                                                    const unsigned char* bytes,
                                                                    std::size_t count) {
    const auto constants = [](const std::array<std::uint64_t, 2>& pair) {
        return _mm_set_epi64x(static_cast<long long>(pair[1]), static_cast<long long>(pair[0]));
    };
    const __m128i by512 = constants(tables.foldBy512);
    const __m128i by128 = constants(tables.foldBy128);
    __m128i a = _mm_xor_si128(loadBlock(bytes), _mm_cvtsi32_si128(static_cast<int>(value)));
    __m128i b = loadBlock(bytes + 16);
    __m128i c = loadBlock(bytes + 32);
    __m128i d = loadBlock(bytes + 48);
    for (bytes += 64, count -= 64; count >= 64; bytes += 64, count -= 64) {
        a = fold(a, by512, loadBlock(bytes));
        b = fold(b, by512, loadBlock(bytes + 16));
        c = fold(c, by512, loadBlock(bytes + 32));
        d = fold(d, by512, loadBlock(bytes + 48));
    }
    a = fold(fold(fold(a, by128, b), by128, c), by128, d);
    for (; count >= 16; bytes += 16, count -= 16) {
        a = fold(a, by128, loadBlock(bytes));
    }
    // The folded block stands for all bytes so far, read into an empty register.
    std::array<unsigned char, 16> folded{};
    _mm_storeu_si128(reinterpret_cast<__m128i*>(folded.data()), a);
    return crc32BySlices(tables, crc32BySlices(tables, 0, folded.data(), folded.size()), bytes,
                         count);
}

#else

bool canFoldCRC32() {
    return false;
}

std::uint32_t crc32ByFolding(const CRC32Tables& tables, std::uint32_t value,
                             const unsigned char* bytes, std::size_t count) {
    return crc32BySlices(tables, value, bytes, count);
}

#endif

} // namespace Orvil
