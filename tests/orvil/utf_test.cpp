// SPDX-License-Identifier: MIT
// The six conversions against a plain model: results, positions and output at cuts of the source
// and sizes of the target; and the conversions of whole texts.
#include "misc/text/utf.h"
#include "utfmodel.h"

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <locale>
#include <random>
#include <string>
#include <utility>
#include <vector>

using namespace Orvil::UTF;
using namespace Orvil;
using namespace UTFModel;

// Named, as the tests have them in their names, without a namespace.
struct From8To16 : std::pair<UTF8, UTF16> {};
struct From16To8 : std::pair<UTF16, UTF8> {};
struct From8To32 : std::pair<UTF8, UTF32> {};
struct From32To8 : std::pair<UTF32, UTF8> {};
struct From16To32 : std::pair<UTF16, UTF32> {};
struct From32To16 : std::pair<UTF32, UTF16> {};

namespace {

template <typename Pair>
class AConversion : public testing::Test {
protected:
    using Source = typename Pair::first_type;
    using Target = typename Pair::second_type;

    static void expectAsModelled(const Units& source, std::size_t capacity) {
        for (const ConversionFlags flags : {strict, lenient}) {
            ASSERT_EQ((converted<Source, Target>(source, capacity, flags)),
                      (modelled<Source, Target>(source, capacity, flags)))
                << testing::PrintToString(source) << " into " << capacity << ", flags " << flags;
        }
    }

    /// A text that has values and ill-formed units of all kinds among runs of ASCII.
    static Units mixed(std::mt19937& random, std::size_t characters, bool withErrors) {
        static constexpr std::uint32_t edges[] = {0,      0x7F,   0x80,    0x7FF,   0x800,
                                                  0xD7FF, 0xE000, 0xFFFF,  0x10000, 0x10FFFF,
                                                  0xE4,   0x4E00, 0x1F600, 0xFFFD};
        static constexpr std::uint32_t odd[] = {
            0xD800, 0xDBFF, 0xDC00, 0xDFFF, 0x110000, 0xFFFFFFFF, 0x80, 0xC0, 0xC1,
            0xE0,   0xED,   0xF0,   0xF4,   0xF5,     0xF8,       0xFC, 0xFF};
        Units units;
        for (std::size_t i = 0; i < characters; ++i) {
            const std::uint32_t kind = random() % 16;
            if (kind == 0 && withErrors) {
                const std::uint32_t unit = odd[random() % std::size(odd)];
                units.push_back(sizeof(Source) == 4 ? unit : unit % (1ULL << 8 * sizeof(Source)));
            } else if (kind < 3) {
                units.insert(units.end(), random() % 40, 'x');
            } else {
                const Units character = written<Source>(edges[random() % std::size(edges)]);
                units.insert(units.end(), character.begin(), character.end());
            }
        }
        return units;
    }
};

using Pairs = testing::Types<From8To16, From16To8, From8To32, From32To8, From16To32, From32To16>;

} // namespace

TYPED_TEST_SUITE(AConversion, Pairs);

TYPED_TEST(AConversion, FollowsTheModelOnMixedTextsCutAnywhere) {
    std::mt19937 random(23);
    for (int round = 0; round < 10000; ++round) {
        Units text = this->mixed(random, random() % 60, round % 2 == 0);
        text.resize(random() % (text.size() + 1));
        this->expectAsModelled(text, 4 * text.size() + 4);
        this->expectAsModelled(text, random() % (2 * text.size() + 1));
    }
}

TYPED_TEST(AConversion, TakesValuesOfEveryRange) {
    using From = typename TestFixture::Source;
    using To = typename TestFixture::Target;
    for (std::uint32_t value = 0; value <= 0x110010; value += 7) {
        const Units source = sizeof(From) == 4 ? Units{value} : written<From>(value);
        ASSERT_EQ((converted<From, To>(source, 4, strict)), (modelled<From, To>(source, 4, strict)))
            << value;
    }
}

// All conversions read by the judgement that is tried here.
TEST(UTF8Sequences, AreJudgedAsICUDoes) {
    static constexpr UTF8 edges[] = {0,    0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                     0xA0, 0xBF, 0xC0, 0xC2, 0xE0, 0xF0, 0xFF};
    for (unsigned start = 0; start < 0x10000; ++start) {
        for (const unsigned third : edges) {
            for (const unsigned fourth : edges) {
                const UTF8 text[] = {static_cast<UTF8>(start >> 8U), static_cast<UTF8>(start),
                                     static_cast<UTF8>(third), static_cast<UTF8>(fourth)};
                int read = 0;
                UChar32 value = 0;
                U8_NEXT(text, read, 4, value);
                ASSERT_EQ(isLegalUTF8Sequence(text, text + 4), value >= 0)
                    << std::hex << start << ' ' << third << ' ' << fourth;
            }
        }
    }
}

TEST(UTF8Sequences, HaveOneToFourBytes) {
    const UTF8 euro[] = {0xE2, 0x82, 0xAC, 0x80, 0x80, 0x80};
    EXPECT_TRUE(isLegalUTF8(euro, 3));
    for (const int length : {-1, 0, 5, 6}) {
        EXPECT_FALSE(isLegalUTF8(euro, length));
    }
    EXPECT_TRUE(isLegalUTF8Sequence(euro, euro + 3));
    EXPECT_FALSE(isLegalUTF8Sequence(euro, euro + 2));
}

TEST(AWholeText, IsConvertedOrEmpty) {
    std::string longText;
    std::u16string longWide;
    for (int i = 0; i < 3000; ++i) {
        longText += i % 7 == 0 ? "\xF0\x9F\x98\x80" : "\xE4\xB8\x80z\xC3\xA4";
        longWide += i % 7 == 0 ? u"\U0001F600" : u"\u4E00z\u00E4";
    }
    const std::string nul("a\0b", 3);
    const std::pair<std::string, std::u16string> cases[] = {
        {"", u""},
        {"Grotesk", u"Grotesk"},
        {nul, std::u16string(u"a\0b", 3)},
        {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
        {longText, longWide}};
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(UTF8toUTF16(utf8), utf16);
        EXPECT_EQ(UTF16toUTF8(utf16), utf8);
    }
    EXPECT_EQ(UTF8toUTF16("\xED\xA0\x80"), u"");
    EXPECT_EQ(UTF8toUTF16(longText + "\xE2\x82"), u"");
    EXPECT_EQ(UTF16toUTF8(longWide + std::u16string(1, char16_t{0xD800})), "");
    EXPECT_EQ(UTF16toUTF8(std::u16string(1, char16_t{0xDC00}) + u"a"), "");
}

TEST(ALocale, WidensAndNarrowsCharacterByCharacter) {
    EXPECT_EQ(makeUTF16("a-Z"), u"a-Z");
    EXPECT_EQ(makeUNICODE("a-Z"), L"a-Z");
    EXPECT_EQ(makeUNICODE("\xE4", std::locale::classic()), L"\xFFFD");
    EXPECT_EQ(makeUTF16("\xE4", std::locale::classic()), u"\xFFFD");
    EXPECT_EQ(makeASCII(L"a\x4E00Z", std::locale::classic()), "a?Z");
}
