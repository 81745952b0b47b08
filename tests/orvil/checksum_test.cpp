// SPDX-License-Identifier: MIT
// Checksums against a bit-by-bit computation and zlib.
#include "misc/checksum/crc32.h"
#include "tests/support/folder.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <array>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

using namespace Orvil;

namespace {

constexpr std::uint32_t usual = 0x04C11DB7;
constexpr std::uint32_t allOnes = 0xFFFFFFFF;
constexpr std::uint32_t polynomials[] = {usual,      0x1EDC6F41, 0x741B8CD7, 0,         1,
                                         0x80000000, 0xFFFFFFFF, 0x000000AF, 0x12345678};

std::vector<unsigned char> randomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<unsigned char> bytes(count);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    return bytes;
}

std::uint32_t bitByBit(std::uint32_t polynomial, std::uint32_t initial,
                       const std::vector<unsigned char>& bytes) {
    std::uint32_t value = initial;
    for (const unsigned char byte : bytes) {
        for (unsigned bit = 0; bit < 8; ++bit) {
            const bool odd = ((value ^ (byte >> bit)) & 1U) != 0;
            value = (value >> 1U) ^ (odd ? CRC32::reflect(polynomial, 32) : 0U);
        }
    }
    return value ^ initial;
}

using AChecksumOfAFile = AFolder;

} // namespace

TEST(AChecksum, HasTheStandardCheckValue) {
    CRC32 crc(usual, allOnes);
    EXPECT_EQ(crc.get(), 0U);
    crc.add("123456789");
    EXPECT_EQ(crc.get(), 0xCBF43926U);
    crc.reset(0);
    EXPECT_EQ(crc.get(), 0U);
    char digits[] = "123456789";
    crc.add<char*>(digits);
    EXPECT_EQ(crc.get(), 0xCBF43926U);
    crc.reset(0xCBF43926U);
    EXPECT_EQ(crc.get(), 0xCBF43926U);
    crc.reset(0);
    crc.add<std::string>("1234");
    crc.add<char>('5');
    crc.add<unsigned char>('6');
    crc.add<char const*>("78");
    crc.addBytes("9x", 1);
    EXPECT_EQ(crc.get(), 0xCBF43926U);
}

TEST(AChecksum, EqualsTheBitByBitOneForAnyPolynomialAndLength) {
    const std::vector<unsigned char> bytes = randomBytes(700, 5);
    for (const std::uint32_t polynomial : polynomials) {
        for (std::size_t length = 0; length <= bytes.size(); length += length < 300 ? 1 : 13) {
            const std::vector<unsigned char> data(bytes.end() - static_cast<std::ptrdiff_t>(length),
                                                  bytes.end());
            const std::uint32_t expected = bitByBit(polynomial, 0x1234567U, data);
            CRC32 fast(polynomial, 0x1234567U);
            CRC32 portable(polynomial, 0x1234567U);
            fast.addBytes(data.data(), data.size());
            portable.addBytesPortably(data.data(), data.size());
            ASSERT_EQ(fast.get(), expected) << polynomial << " length " << length;
            ASSERT_EQ(portable.get(), expected) << polynomial << " length " << length;
        }
    }
}

TEST(AChecksum, TakesSingleBits) {
    const std::array<unsigned char, 3> bytes{0xA5, 0x3C, 0x07};
    for (const std::uint32_t polynomial : polynomials) {
        for (unsigned count = 0; count <= 24; ++count) {
            CRC32 together(polynomial, allOnes);
            CRC32 apart(polynomial, allOnes);
            together.addBits(bytes.data(), count);
            for (unsigned bit = 0; bit < count; ++bit) {
                apart.add<bool>(((bytes[bit / 8] >> (bit % 8)) & 1U) != 0);
            }
            EXPECT_EQ(together.get(), apart.get());
        }
    }
}

TEST_F(AChecksumOfAFile, TakesItWhole) {
    const std::vector<unsigned char> bytes = randomBytes(50000, 8);
    const std::string path = file("bytes", std::string(bytes.begin(), bytes.end()));
    CRC32 crc(usual, allOnes);
    crc.addFile(path);
    EXPECT_EQ(crc.get(), crc32(0, bytes.data(), static_cast<uInt>(bytes.size())));
    const std::uint32_t before = crc.get();
    crc.addFile(path + ".missing");
    crc.addFile("/");
    EXPECT_EQ(crc.get(), before);
}

TEST(AChecksumTable, IsSharedPerPolynomial) {
    const std::uint32_t* table = CRC32::getPolyTable(usual);
    EXPECT_EQ(table[0], 0U);
    EXPECT_EQ(table[1], 0x77073096U);
    EXPECT_EQ(table[255], 0x2D02EF8DU);
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([table] {
            EXPECT_EQ(CRC32::getPolyTable(usual), table);
            EXPECT_EQ(CRC32::getPolyTable(0xABCDEF01), CRC32::getPolyTable(0xABCDEF01));
        });
    }
}

namespace {
const std::uint32_t* keptTable = nullptr;
void sumAtTheEnd() {
    CRC32 crc(usual, allOnes);
    crc.add("123456789");
    _exit(keptTable[1] == 0x77073096U && crc.get() == 0xCBF43926U ? 0 : 1);
}
} // namespace

TEST(AChecksumTable, OutlivesWhateverEndsWithTheProcess) {
    // In a process of its own, in which the function is registered before the first table is made
    // and so called after all that is made with the tables has ended.
    const std::string style = GTEST_FLAG_GET(death_test_style);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::atexit(sumAtTheEnd);
            keptTable = CRC32::getPolyTable(usual);
            std::exit(2);
        },
        testing::ExitedWithCode(0), "");
    GTEST_FLAG_SET(death_test_style, style);
}

TEST(TheLowBits, AreReflected) {
    EXPECT_EQ(CRC32::reflect(usual, 32), 0xEDB88320U);
    EXPECT_EQ(CRC32::reflect(0xF1, 4), 0x8U);
    EXPECT_EQ(CRC32::reflect(1, 0), 0U);
    EXPECT_EQ(CRC32::reflect(1, 40), 0x80000000U);
}
