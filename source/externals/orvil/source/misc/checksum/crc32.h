// SPDX-License-Identifier: MIT
// Cyclic redundancy checks of 32 bits with any polynomial.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace Orvil {

struct CRC32Tables;

/// The least-significant-bit-first form. With the polynomial 0x04C11DB7 and the initial value
/// 0xFFFFFFFF it is the CRC-32 of ZIP files. Whole bytes and single bits may be mixed freely.
/// [one-thread], but getPolyTable is [any-thread].
class CRC32 {
public:
    /// `polynomial` in normal, not reflected, notation. `initial` is also XORed into the result.
    CRC32(std::uint32_t polynomial, std::uint32_t initial);

    /// reset(0) gives the state after construction.
    void reset(std::uint32_t value) { register_ = value ^ xorValue_; }
    [[nodiscard]] std::uint32_t get() const { return register_ ^ xorValue_; }

    /// char and unsigned char add one byte, bool one bit, a pointer to char the bytes of a text
    /// without its terminator, a string its bytes.
    template <typename T>
    void add(const T& value) {
        using Plain = std::decay_t<const T>;
        if constexpr (std::is_same_v<Plain, bool>) {
            addBit(value);
        } else if constexpr (std::is_same_v<Plain, char> || std::is_same_v<Plain, unsigned char>) {
            const auto byte = static_cast<unsigned char>(value);
            addBytes(&byte, 1);
        } else {
            static_assert(std::is_convertible_v<Plain, std::string_view>);
            const std::string_view text(value);
            addBytes(text.data(), text.size());
        }
    }
    void addBytes(const char* bytes, std::size_t count);
    void addBytes(const unsigned char* bytes, std::size_t count);
    /// bitCount / 8 whole bytes, then the other bits of the next one, least significant first.
    void addBits(const unsigned char* bytes, std::size_t bitCount);
    /// Every byte of the file; nothing if it cannot be opened.
    void addFile(const std::string& path);

    /// The low `bits` bits in reverse order; more than 32 are taken as 32.
    [[nodiscard]] static std::uint32_t reflect(std::uint32_t value, unsigned bits);
    /// The 256 entries for the polynomial, made at its first use and kept as long as the library.
    [[nodiscard]] static const std::uint32_t* getPolyTable(std::uint32_t polynomial);

    /// Whether long runs of bytes go through the processor's carry-less multiplication.
    [[nodiscard]] static bool usesCarrylessMultiplication();
    /// As addBytes, but never by carry-less multiplication: for other processors, and to measure.
    void addBytesPortably(const unsigned char* bytes, std::size_t count);

private:
    void addBit(bool bit);

    std::uint32_t polynomial_;
    const CRC32Tables* tables_; // shared
    std::uint32_t register_;
    std::uint32_t xorValue_;
};

} // namespace Orvil
