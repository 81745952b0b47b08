// SPDX-License-Identifier: MIT
// Fitting texts: every character is ten wide here.
#include "textwrapping.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

using testing::ElementsAreArray;

namespace {

class Text : public testing::Test {
protected:
    std::int32_t measure(std::string_view text) {
        bytesMeasured += text.size();
        return 10 * static_cast<std::int32_t>(std::count_if(
                        text.begin(), text.end(), [](char byte) { return (byte & 0xC0) != 0x80; }));
    }
    std::vector<std::string> wrapped(std::string_view text, float width) {
        return wrapText(text, width, [this](std::string_view part) { return measure(part); });
    }
    std::string shortened(std::string_view text, float width) {
        return shortenText(text, width, [this](std::string_view part) { return measure(part); });
    }

    std::size_t bytesMeasured = 0;
};

TEST_F(Text, IsBrokenAtBlanksElseBetweenCharacters) {
    using Lines = std::vector<std::string>;
    const std::tuple<const char*, float, Lines> cases[] = {
        {"", 100, {""}},
        {"one two", 70, {"one two"}},
        {"one two", 69, {"one", "two"}},
        {"one two three", 80, {"one two", "three"}},
        {"one   two", 40, {"one", "two"}},
        {"one two  ", 30, {"one", "two"}},
        {"  one two", 50, {"  one", "two"}},
        {"abcdefgh ij", 50, {"abcde", "fgh", "ij"}},
        {"äöüß日本", 20, {"äö", "üß", "日本"}},
        {"日本", 5, {"日", "本"}},
        {"ab", -1, {"a", "b"}},
        {"one\ntwo three\n", 50, {"one", "two", "three", ""}},
    };
    for (const auto& [text, width, lines] : cases) {
        SCOPED_TRACE(text);
        EXPECT_THAT(wrapped(text, width), ElementsAreArray(lines));
    }
}

TEST_F(Text, IsNotMeasuredAgainAndAgain) {
    for (const std::string& word :
         {std::string("word "), std::string("word"), std::string("   \n")}) {
        std::string text;
        for (int i = 0; i < 20'000; ++i) {
            text += word;
        }
        for (const float width : {50.0F, 700.0F, 1e9F}) {
            bytesMeasured = 0;
            wrapped(text, width);
            EXPECT_LT(bytesMeasured, 40 * text.size());
        }
    }
}

TEST_F(Text, IsShortenedByAnEllipsis) {
    EXPECT_EQ(shortened("family", 60), "family");
    EXPECT_EQ(shortened("family", 59), "fami…");
    EXPECT_EQ(shortened("日本語", 20), "日…");
    EXPECT_EQ(shortened("family", 5), "…");
    EXPECT_EQ(shortened("", 5), "");
    // And what a buffer cut loses its last character.
    const std::pair<const char*, const char*> cases[] = {
        {"", ""}, {"ab", "ab"}, {"aé", "aé"}, {"a\xC3", "a"}, {"日\xE6\x97", "日"}, {"\xF0", ""}};
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(withoutCutCharacter(text), expected);
    }
}

} // namespace
