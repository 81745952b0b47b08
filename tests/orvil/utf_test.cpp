// SPDX-License-Identifier: MIT
// The six conversions against a plain model: results, positions and output at every cut of the
// source and every size of the target.
#include "misc/text/utf.h"
#include "utfmodel.h"

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

using namespace Orvil;
using namespace Orvil::UTF;
using namespace UTFModel;

namespace {

template <typename Source, typename Target>
struct Conversion;
#define CONVERSION(From, To)                                                                       \
    template <>                                                                                    \
    struct Conversion<From, To> {                                                                  \
        static constexpr auto run = Convert##From##to##To;                                         \
    }
CONVERSION(UTF8, UTF16);
CONVERSION(UTF16, UTF8);
CONVERSION(UTF8, UTF32);
CONVERSION(UTF32, UTF8);
CONVERSION(UTF16, UTF32);
CONVERSION(UTF32, UTF16);
#undef CONVERSION

template <typename Source, typename Target>
Outcome converted(const Units& source, std::size_t capacity, ConversionFlags flags) {
    // Exact copies, so that a read or a write beyond them is seen by the sanitizers.
    const std::vector<Source> exact(source.begin(), source.end());
    std::vector<Target> buffer(capacity);
    const Source* from = exact.data();
    Target* to = buffer.data();
    const ConversionResult result =
        Conversion<Source, Target>::run(&from, from + exact.size(), &to, to + buffer.size(), flags);
    return {result, static_cast<std::size_t>(from - exact.data()), Units(buffer.data(), to)};
}

template <typename Pair>
class AConversion : public testing::Test {
protected:
    using Source = typename Pair::first_type;
    using Target = typename Pair::second_type;

    static void expectAsModelled(const Units& source, std::size_t capacity) {
        for (const ConversionFlags flags : {strict, lenient}) {
            const Outcome actual = converted<Source, Target>(source, capacity, flags);
            const Outcome expected = modelled<Source, Target>(source, capacity, flags);
            if (!(actual == expected)) {
                ADD_FAILURE() << actual << "\nexpected " << expected << "\nfrom "
                              << Outcome{conversionOK, source.size(), source} << " into "
                              << capacity << " units, flags " << flags;
            }
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

using Pairs =
    testing::Types<std::pair<UTF8, UTF16>, std::pair<UTF16, UTF8>, std::pair<UTF8, UTF32>,
                   std::pair<UTF32, UTF8>, std::pair<UTF16, UTF32>, std::pair<UTF32, UTF16>>;

} // namespace

TYPED_TEST_SUITE(AConversion, Pairs);

TYPED_TEST(AConversion, StopsExactlyAtEveryCut) {
    std::mt19937 random(11);
    for (const bool withErrors : {false, true}) {
        for (int round = 0; round < 8; ++round) {
            const Units text = this->mixed(random, 18, withErrors);
            for (std::size_t length = 0; length <= text.size(); ++length) {
                const Units cut(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
                this->expectAsModelled(cut, 4 * length + 4);
            }
            for (std::size_t capacity = 0; capacity <= 2 * text.size(); ++capacity) {
                this->expectAsModelled(text, capacity);
            }
        }
    }
}

TYPED_TEST(AConversion, FollowsTheModelOnMixedTexts) {
    std::mt19937 random(23);
    for (int round = 0; round < 3000; ++round) {
        const Units text = this->mixed(random, random() % 60, round % 2 == 0);
        this->expectAsModelled(text, 4 * text.size());
        this->expectAsModelled(text, random() % (text.size() + 1));
    }
}

TYPED_TEST(AConversion, TakesValuesOfEveryRange) {
    using From = typename TestFixture::Source;
    using To = typename TestFixture::Target;
    std::string wrong;
    for (std::uint32_t value = 0; value <= 0x110010 && wrong.size() < 100; value += 7) {
        const Units source = sizeof(From) == 4 ? Units{value} : written<From>(value);
        const Outcome expected = modelled<From, To>(source, 4, strict);
        if (!(converted<From, To>(source, 4, strict) == expected)) {
            wrong += " " + std::to_string(value);
        }
    }
    EXPECT_EQ(wrong, "");
}

namespace {

/// Converts all sequences of `length` bytes whose bytes come from `choices[position]`.
template <typename Target>
void expectICUsJudgement(const std::vector<std::vector<std::uint8_t>>& choices) {
    std::vector<std::size_t> index(choices.size(), 0);
    std::vector<std::uint8_t> bytes(choices.size());
    const int length = static_cast<int>(choices.size());
    for (;;) {
        for (std::size_t i = 0; i < choices.size(); ++i) {
            bytes[i] = choices[i][index[i]];
        }
        // What ICU reads before the first error.
        Target expected[8];
        Target* expectedEnd = expected;
        int good = 0;
        for (int at = 0; at < length; good = at) {
            UChar32 value = 0;
            U8_NEXT(bytes.data(), at, length, value);
            if (value < 0) {
                break;
            }
            for (const std::uint32_t unit : written<Target>(static_cast<std::uint32_t>(value))) {
                *expectedEnd++ = static_cast<Target>(unit);
            }
        }
        Target target[8];
        const UTF8* from = bytes.data();
        Target* to = target;
        const ConversionResult result =
            Conversion<UTF8, Target>::run(&from, from + length, &to, target + 8, strict);
        const bool agrees =
            from - bytes.data() == good && (result == conversionOK) == (good == length) &&
            result != targetExhausted && std::equal(target, to, expected, expectedEnd) &&
            isLegalUTF8Sequence(bytes.data(), bytes.data() + length) == (good > 0);
        if (!agrees) {
            FAIL() << Outcome{result, static_cast<std::size_t>(length),
                              Units(bytes.begin(), bytes.end())};
        }
        std::size_t position = choices.size();
        while (position > 0 && ++index[position - 1] == choices[position - 1].size()) {
            index[--position] = 0;
        }
        if (position == 0) {
            return;
        }
    }
}

} // namespace

TEST(UTF8Sequences, AreJudgedAsICUDoes) {
    std::vector<std::uint8_t> all(256);
    for (std::size_t i = 0; i < all.size(); ++i) {
        all[i] = static_cast<std::uint8_t>(i);
    }
    const std::vector<std::uint8_t> leads{0xEF, 0xF0, 0xF1, 0xF3, 0xF4, 0xF5, 0xF7,
                                          0xF8, 0xFB, 0xFC, 0xFD, 0xFE, 0xFF};
    const std::vector<std::uint8_t> edges{0,    0x41, 0x7F, 0x80, 0x8F, 0x90, 0x9F,
                                          0xA0, 0xBF, 0xC0, 0xC2, 0xE0, 0xF0, 0xFF};
    for (const auto& choices : std::vector<std::vector<std::vector<std::uint8_t>>>{
             {all}, {all, all}, {all, all, edges}, {leads, all, edges, edges}}) {
        expectICUsJudgement<UTF16>(choices);
        expectICUsJudgement<UTF32>(choices);
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
