// SPDX-License-Identifier: MIT
// The checksum object and the shared tables.
#include "misc/checksum/crc32.h"

#include "misc/checksum/crc32tables.h"
#include "misc/hash/hashmap.h"
#include "misc/threads/mutex.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>

namespace Orvil {

namespace {

// Below this the set-up of folding costs more than it saves.
constexpr std::size_t leastToFold = 128;

struct SharedTables {
    Mutex lock{false};
    hash_map<std::uint32_t, std::unique_ptr<CRC32Tables>> byPolynomial{16};
};

const CRC32Tables& tablesOf(std::uint32_t polynomial) {
    // Never freed, on purpose: other threads and static objects may sum until the process is gone.
    static SharedTables& shared = *std::make_unique<SharedTables>().release();
    const ScopedLock<Mutex> locked(shared.lock);
    if (const auto* present = shared.byPolynomial.find(polynomial)) {
        return **present;
    }
    return *shared.byPolynomial.insert(polynomial, std::make_unique<CRC32Tables>(polynomial));
}

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

} // namespace

CRC32::CRC32(std::uint32_t polynomial, std::uint32_t initial)
    : polynomial_(polynomial), tables_(&tablesOf(polynomial)), register_(initial),
      xorValue_(initial) {}

void CRC32::addBytes(const char* bytes, std::size_t count) {
    addBytes(reinterpret_cast<const unsigned char*>(bytes), count);
}

void CRC32::addBytes(const unsigned char* bytes, std::size_t count) {
    if (count >= leastToFold && usesCarrylessMultiplication()) {
        register_ = crc32ByFolding(*tables_, register_, bytes, count);
    } else {
        addBytesPortably(bytes, count);
    }
}

void CRC32::addBytesPortably(const unsigned char* bytes, std::size_t count) {
    register_ = crc32BySlices(*tables_, register_, bytes, count);
}

void CRC32::addBits(const unsigned char* bytes, std::size_t bitCount) {
    addBytes(bytes, bitCount / 8);
    for (std::size_t bit = 0; bit < bitCount % 8; ++bit) {
        add<bool>(((bytes[bitCount / 8] >> bit) & 1U) != 0);
    }
}

void CRC32::addBit(bool bit) {
    const bool odd = ((register_ ^ (bit ? 1U : 0U)) & 1U) != 0;
    register_ = (register_ >> 1U) ^ (odd ? reflect(polynomial_, 32) : 0U);
}

void CRC32::addFile(const std::string& path) {
    const std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rbe"));
    if (!file) {
        return;
    }
    std::array<unsigned char, 16384> buffer{};
    while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), file.get())) {
        addBytes(buffer.data(), count);
    }
}

std::uint32_t CRC32::reflect(std::uint32_t value, unsigned bits) {
    std::uint32_t reflected = 0;
    for (unsigned i = 0; i < std::min(bits, 32U); ++i) {
        reflected = (reflected << 1U) | ((value >> i) & 1U);
    }
    return reflected;
}

const std::uint32_t* CRC32::getPolyTable(std::uint32_t polynomial) {
    return tablesOf(polynomial).slices[0].data();
}

bool CRC32::usesCarrylessMultiplication() {
    static const bool available = canFoldCRC32();
    return available;
}

} // namespace Orvil
