// SPDX-License-Identifier: MIT
// The six conversions against a plain model, whose idea of well-formed UTF-8 is ICU's: results,
// positions and output at every cut of the source and every size of the target.
#include "misc/text/utf.h"

#include <gtest/gtest.h>
#include <unicode/utf8.h>

#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

using namespace Orvil;
using namespace Orvil::UTF;

namespace {

using Units = std::vector<std::uint32_t>;

struct Outcome {
    ConversionResult result;
    std::size_t consumed;
    Units produced;

    bool operator==(const Outcome& other) const {
        return result == other.result && consumed == other.consumed && produced == other.produced;
    }
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    stream << "result " << outcome.result << " after " << outcome.consumed << " units:" << std::hex;
    for (const std::uint32_t unit : outcome.produced) {
        stream << ' ' << unit;
    }
    return stream << std::dec;
}

struct Step {
    ConversionResult result;
    std::size_t length;
    std::uint32_t value;
};

bool isSurrogate(std::uint32_t value) {
    return value >= 0xD800 && value <= 0xDFFF;
}

// One source character, by the width of its units.
Step readUTF8(const Units& source, std::size_t at) {
    static constexpr std::uint8_t lengths[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 3};
    const std::uint32_t lead = source[at];
    std::size_t length = 6;
    if (lead < 0xF0) {
        length = lengths[lead >> 4U];
    } else if (lead < 0xF8) {
        length = 4;
    } else if (lead < 0xFC) {
        length = 5;
    }
    if (at + length > source.size()) {
        return {sourceExhausted, 0, 0};
    }
    std::uint8_t bytes[6] = {};
    for (std::size_t i = 0; i < length; ++i) {
        bytes[i] = static_cast<std::uint8_t>(source[at + i]);
    }
    int read = 0;
    UChar32 value = 0;
    U8_NEXT(bytes, read, static_cast<int>(length), value);
    return value < 0 ? Step{sourceIllegal, 0, 0}
                     : Step{conversionOK, length, static_cast<std::uint32_t>(value)};
}

Step readUTF16(const Units& source, std::size_t at, ConversionFlags flags) {
    const std::uint32_t unit = source[at];
    if (!isSurrogate(unit)) {
        return {conversionOK, 1, unit};
    }
    if (unit < 0xDC00 && at + 1 == source.size()) {
        return {sourceExhausted, 0, 0};
    }
    if (unit < 0xDC00 && source[at + 1] >= 0xDC00 && source[at + 1] <= 0xDFFF) {
        return {conversionOK, 2, 0x10000 + (unit - 0xD800) * 0x400 + source[at + 1] - 0xDC00};
    }
    return flags == strict ? Step{sourceIllegal, 0, 0} : Step{conversionOK, 1, 0xFFFD};
}

Step readUTF32(const Units& source, std::size_t at, ConversionFlags flags) {
    if (!isSurrogate(source[at]) && source[at] <= 0x10FFFF) {
        return {conversionOK, 1, source[at]};
    }
    return flags == strict ? Step{sourceIllegal, 0, 0} : Step{conversionOK, 1, 0xFFFD};
}

template <typename Unit>
Step read(const Units& source, std::size_t at, ConversionFlags flags) {
    if constexpr (sizeof(Unit) == 1) {
        return readUTF8(source, at);
    } else if constexpr (sizeof(Unit) == 2) {
        return readUTF16(source, at, flags);
    } else {
        return readUTF32(source, at, flags);
    }
}

template <typename Unit>
Units written(std::uint32_t value) {
    if (sizeof(Unit) == 1 && value >= 0x80) {
        Units bytes;
        std::uint32_t rest = value;
        const std::size_t length = value < 0x800 ? 2 : value < 0x10000 ? 3 : 4;
        for (; bytes.size() + 1 < length; rest /= 64) {
            bytes.insert(bytes.begin(), 0x80 + rest % 64);
        }
        static constexpr std::uint32_t marks[] = {0, 0, 0xC0, 0xE0, 0xF0};
        bytes.insert(bytes.begin(), marks[length] + rest);
        return bytes;
    }
    if (sizeof(Unit) == 2 && value >= 0x10000) {
        return {0xD800 + (value - 0x10000) / 0x400, 0xDC00 + value % 0x400};
    }
    return {value};
}

template <typename Source, typename Target>
Outcome modelled(const Units& source, std::size_t capacity, ConversionFlags flags) {
    constexpr bool skipsTooGreat = sizeof(Source) == 4 && sizeof(Target) == 2;
    Outcome outcome{conversionOK, 0, {}};
    while (outcome.consumed < source.size()) {
        if (skipsTooGreat && outcome.produced.size() == capacity) {
            outcome.result = targetExhausted;
            return outcome;
        }
        if (skipsTooGreat && flags == strict && source[outcome.consumed] > 0x10FFFF) {
            outcome.result = sourceIllegal;
            ++outcome.consumed;
            continue;
        }
        const Step step = read<Source>(source, outcome.consumed, flags);
        if (step.result != conversionOK) {
            outcome.result = step.result;
            return outcome;
        }
        const Units units = written<Target>(step.value);
        if (outcome.produced.size() + units.size() > capacity) {
            outcome.result = targetExhausted;
            return outcome;
        }
        outcome.produced.insert(outcome.produced.end(), units.begin(), units.end());
        outcome.consumed += step.length;
    }
    return outcome;
}

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

TYPED_TEST(AConversion, StopsExactlyAtEveryCutAndEveryTargetSize) {
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

TYPED_TEST(AConversion, TakesEverySingleValue) {
    using From = typename TestFixture::Source;
    using To = typename TestFixture::Target;
    std::string wrong;
    for (std::uint32_t value = 0; value <= 0x110010 && wrong.size() < 100; ++value) {
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
             {all}, {all, all}, {all, all, all}, {leads, all, edges, edges}}) {
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

TEST(UTF16Units, PairInEveryCombination) {
    for (std::uint32_t high = 0xD7FF; high <= 0xDC00; ++high) {
        for (std::uint32_t low = 0xDBFF; low <= 0xE000; low += high % 8 == 0 ? 1 : 37) {
            const Units source{high, low};
            for (const ConversionFlags flags : {strict, lenient}) {
                ASSERT_EQ((converted<UTF16, UTF8>(source, 8, flags)),
                          (modelled<UTF16, UTF8>(source, 8, flags)));
            }
        }
    }
}

TEST(AWholeText, IsConvertedOrEmpty) {
    struct Case {
        std::string utf8;
        std::u16string utf16;
    };
    std::string longText;
    std::u16string longWide;
    for (int i = 0; i < 3000; ++i) {
        longText += i % 7 == 0 ? "\xF0\x9F\x98\x80" : "\xE4\xB8\x80z\xC3\xA4";
        longWide += i % 7 == 0 ? u"\U0001F600" : u"\u4E00z\u00E4";
    }
    const std::string nul("a\0b", 3);
    const Case cases[] = {{"", u""},
                          {"Grotesk", u"Grotesk"},
                          {nul, std::u16string(u"a\0b", 3)},
                          {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
                          {longText, longWide}};
    for (const Case& c : cases) {
        EXPECT_EQ(UTF8toUTF16(c.utf8), c.utf16);
        EXPECT_EQ(UTF16toUTF8(c.utf16), c.utf8);
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
