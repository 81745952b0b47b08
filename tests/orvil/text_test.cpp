// SPDX-License-Identifier: MIT
// Strings and numbers, for both widths of characters and every type.
#include "misc/text/numbers.h"
#include "misc/text/strings.h"

#include <gtest/gtest.h>

#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

using namespace Orvil;

namespace {

template <typename Char>
class StringFunctions : public testing::Test {
protected:
    using Text = std::basic_string<Char>;
    static Text text(std::string_view narrow) { return {narrow.begin(), narrow.end()}; }
};

using Widths = testing::Types<char, wchar_t>;

} // namespace

TYPED_TEST_SUITE(StringFunctions, Widths);

TYPED_TEST(StringFunctions, TrimBlanksButNotNewlines) {
    const std::pair<const char*, const char*> cases[] = {
        {"", ""},     {" \t\r", ""},     {"a", "a"},        {" \ta b\r ", "a b"},
        {"\n", "\n"}, {" a \n", "a \n"}, {"\n a ", "\n a"},
    };
    for (const auto& [text, trimmed] : cases) {
        EXPECT_EQ(trim(this->text(text)), this->text(trimmed)) << text;
    }
}

TYPED_TEST(StringFunctions, CompareWithoutCase) {
    auto upper = this->text("aZ 1\xE4!");
    upCase(upper);
    EXPECT_EQ(upper.substr(0, 4), this->text("AZ 1"));
    EXPECT_TRUE(compareCaseInsensitive(this->text("Inherit"), this->text("iNHERIT")));
    EXPECT_FALSE(compareCaseInsensitive(this->text("a"), this->text("ab")));
    EXPECT_FALSE(compareCaseInsensitive(this->text("a_"), this->text("a?")));
}

TYPED_TEST(StringFunctions, SplitAtEverySeparator) {
    using Tokens = std::vector<const char*>;
    const std::tuple<const char*, const char*, Tokens, Tokens> cases[] = {
        {"a,,b", ",", {"a", "b"}, {"a", "", "b"}},
        {"", ",", {}, {""}},
        {",", ",", {}, {"", ""}},
        {",a;b,", ",;", {"a", "b"}, {"", "a", "b", ""}},
        {"ab", "", {"ab"}, {"ab"}},
    };
    for (const auto& [text, separators, runs, all] : cases) {
        for (const bool skipEmpty : {true, false}) {
            std::vector<typename TestFixture::Text> expected;
            for (const char* token : skipEmpty ? runs : all) {
                expected.push_back(this->text(token));
            }
            EXPECT_EQ(tokenize(this->text(text), this->text(separators), skipEmpty), expected)
                << text;
        }
    }
}

TYPED_TEST(StringFunctions, PadAndCutOnTheLeft) {
    const auto zero = static_cast<TypeParam>('0');
    EXPECT_EQ(resize(this->text("abcdef"), 3, zero, true), this->text("def"));
    EXPECT_EQ(resize(this->text("abcdef"), 3, zero, false), this->text("abcdef"));
    EXPECT_EQ(resize(this->text("7"), 3, zero, true), this->text("007"));
    EXPECT_EQ(resize(this->text("7"), 0, zero, true), this->text(""));
    EXPECT_EQ(resize(this->text(""), 2, zero, false), this->text("00"));
}

TEST(AStream, IsReadToItsEnd) {
    std::istringstream narrow("first\n second\n");
    std::string word;
    narrow >> word;
    EXPECT_EQ(streamToString(narrow), "\n second\n");
    EXPECT_EQ(streamToString(narrow), "");
    std::wistringstream wide(L"a b");
    EXPECT_EQ(streamToWString(wide), L"a b");
}

TEST(ANumber, IsWrittenRightAligned) {
    EXPECT_EQ(toString(-42), "-42");
    EXPECT_EQ(toString(-42, 5, 6), "  -42");
    EXPECT_EQ(toString(4294967295U, 0, 6), "4294967295");
    EXPECT_EQ(toString(std::numeric_limits<long>::min()), "-9223372036854775808");
    EXPECT_EQ(toString(7UL, 2), " 7");
    EXPECT_EQ(toString(std::numeric_limits<long long>::min()), "-9223372036854775808");
    EXPECT_EQ(toString(std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(toString(1.5F), "1.5");
    EXPECT_EQ(toString(3.14159265, 8, 3), "    3.14");
    EXPECT_EQ(toString(1e20, 0, 6), "1e+20");
    EXPECT_EQ(toString(true, 6), "  true");
    EXPECT_EQ(toString(false), "false");
}

TEST(ANumber, IgnoresTheLocaleOfTheProcess) {
    struct Commas : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        char do_decimal_point() const override { return ','; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Commas));
    bool ok = false;
    EXPECT_EQ(toString(12345), "12345");
    EXPECT_EQ(toString(1234.5), "1234.5");
    EXPECT_EQ(safeParse<double>("1.5", ok), 1.5);
    std::locale::global(before);
}

namespace {

template <typename T>
class NumberParsing : public testing::Test {};

using Numbers = testing::Types<int, unsigned, long, unsigned long, long long, unsigned long long,
                               float, double>;

template <typename T>
void expectAsAStreamReads(const std::string& text) {
    std::istringstream stream(text);
    T expected{};
    const bool expectedOk = static_cast<bool>(stream >> expected);
    bool ok = !expectedOk;
    const T value = safeParse<T>(text, ok);
    EXPECT_EQ(ok, expectedOk) << '"' << text << '"';
    EXPECT_EQ(value, expectedOk ? expected : T{}) << '"' << text << '"';
    EXPECT_EQ(parse<T>(text), value);
}

} // namespace

TYPED_TEST_SUITE(NumberParsing, Numbers);

TYPED_TEST(NumberParsing, ReadsWhatAStreamReads) {
    const std::string texts =
        "|x|0| 42|12abc|\n\t7|-1|+5|+-5|- "
        "5|--5|0x10|007|2147483647|2147483648|-2147483648|-2147483649|4294967295|4294967296|-"
        "4294967295|-4294967296|9223372036854775807|9223372036854775808|-9223372036854775808|-"
        "9223372036854775809|18446744073709551615|18446744073709551616|-18446744073709551615|"
        "99999999999999999999999|1.5|.5|5.|1e3|1e|1e400|-1e400|1e-400|inf|nan|1\n2|1 2";
    for (const std::string& text : tokenize(texts, std::string("|"), false)) {
        expectAsAStreamReads<TypeParam>(text);
    }
    std::mt19937 random(7);
    const std::string alphabet = "0123456789+-. xe\n";
    for (int round = 0; round < 20000; ++round) {
        std::string text(random() % 12, ' ');
        for (char& character : text) {
            character = alphabet[random() % alphabet.size()];
        }
        expectAsAStreamReads<TypeParam>(text);
    }
}

TEST(ATruthValue, HasSixSpellingsEach) {
    const std::tuple<const char*, bool, bool> cases[] = {
        {"1", true, true},     {"t", true, true},      {"Y", true, true},
        {"On", true, true},    {" yes\t", true, true}, {"TRUE", true, true},
        {"0", true, false},    {"f", true, false},     {"N", true, false},
        {"off", true, false},  {"no\r", true, false},  {"False", true, false},
        {"", false, false},    {"2", false, false},    {"yes\n", false, false},
        {"tru", false, false},
    };
    for (const auto& [text, isOne, value] : cases) {
        bool ok = !isOne;
        EXPECT_EQ(safeParse<bool>(text, ok), value) << text;
        EXPECT_EQ(ok, isOne) << text;
        EXPECT_EQ(parse<bool>(text), value) << text;
    }
}
