// SPDX-License-Identifier: MIT
// The tables of a polynomial, and two fast ways to sum bytes with them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Orvil {

/// Shared by all checksums of one polynomial.
struct CRC32Tables {
    explicit CRC32Tables(std::uint32_t polynomial);

    /// slices[k][b] is what the byte b does to the register when k bytes follow it.
    std::array<std::array<std::uint32_t, 256>, 16> slices;
    /// Powers of x modulo the polynomial, reflected and shifted left by one: they carry a block of
    /// 128 bits over a distance of 512 or of 128 bits.
    std::array<std::uint64_t, 2> foldBy512;
    std::array<std::uint64_t, 2> foldBy128;
};

/// The register after `count` bytes, sixteen bytes at a step.
std::uint32_t crc32BySlices(const CRC32Tables& tables, std::uint32_t value,
                            const unsigned char* bytes, std::size_t count);

/// Whether this processor can run crc32ByFolding.
bool canFoldCRC32();
/// The register after `count` bytes, at least 64, by carry-less multiplication.
std::uint32_t crc32ByFolding(const CRC32Tables& tables, std::uint32_t value,
                             const unsigned char* bytes, std::size_t count);

} // namespace Orvil
