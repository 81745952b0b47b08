// SPDX-License-Identifier: MIT
// The plug-in's text helpers.
#include "textutils.h"

#include <gtest/gtest.h>

#include <tuple>

using Texts = std::vector<std::string>;

TEST(AFileName, IsWhatFollowsTheLastSeparatorOfEitherKind) {
    for (const auto& [path, name] : std::vector<std::pair<std::string, std::string>>{
             {"a/b\\c", "c"}, {"a\\b/c", "c"}, {"bare", "bare"}, {"a/b/", ""}, {"", ""}}) {
        EXPECT_EQ(GLY::extractFilename(path), name) << path;
    }
}

TEST(Tokens, AreSplitAtTheWholeDelimiter) {
    EXPECT_EQ(GLY::tokenize("a::b", ":"), (Texts{"a", "", "b"}));
    EXPECT_EQ(GLY::tokenize("", ":"), (Texts{""}));
    EXPECT_EQ(GLY::tokenize("a:", ":", true), (Texts{"a", ""}));
    EXPECT_EQ(GLY::tokenize("a-b--c---d", "--"), (Texts{"a-b", "c", "-d"}));
    EXPECT_EQ(GLY::tokenize("ab", ""), (Texts{"ab"}));
}

TEST(Trimming, LeavesLineFeeds) {
    EXPECT_EQ(GLY::trim(" \tx\r"), "x");
    EXPECT_EQ(GLY::trim("\t x y \n"), "x y \n");
    EXPECT_EQ(GLY::trim(" \t\r "), "");
    EXPECT_EQ(GLY::trim(""), "");
}

TEST(Numbers, AreReadAsFarAsTheyGo) {
    const std::pair<std::string, int> cases[] = {
        {"12abc", 12}, {" -7", -7}, {"+3", 3}, {"x", 0}, {"", 0}, {"99999999999", 2147483647}};
    for (const auto& [text, value] : cases) {
        EXPECT_EQ(GLY::parse<int>(text), value) << text;
    }
    for (const auto& [text, value] : std::vector<std::pair<std::string, int>>{
             {"ff", 255}, {"FF", 255}, {"1g", 1}, {"g", 0}, {"", 0}}) {
        EXPECT_EQ(GLY::parseHex<int>(text), value) << text;
    }
    for (const auto& [text, value] : std::vector<std::pair<std::string, bool>>{
             {"1", true}, {"0", false}, {"true", false}, {"", false}, {" 1", true}}) {
        EXPECT_EQ(GLY::parse<bool>(text), value) << text;
    }
    EXPECT_EQ(GLY::toString(1234567), "1234567");
    EXPECT_EQ(GLY::toString(0.5), "0.5");
}

TEST(AColor, IsReadFromEitherForm) {
    for (const auto& [text, red, green, blue, outOfRange] :
         std::vector<std::tuple<std::string, float, float, float, int>>{
             {"#255:128:0", 0.99609375F, 0.5F, 0.0F, 0},
             {"#ff8000", 0.99609375F, 0.5F, 0.0F, 0},
             {"#1:2:30", 0.00390625F, 0.0078125F, 0.1171875F, 0}, // seven characters as well
             {"#255:300:1", 0.0F, 0.0F, 0.0F, 1},
             {"#0:0:256", 0.0F, 0.0F, 0.0F, 1},
             {"", 0.0F, 0.0F, 0.0F, 0},
             {"#12345", 0.0F, 0.0F, 0.0F, 0},
         }) {
        const GLY::Color color(text);
        EXPECT_EQ(color.red, red) << text;
        EXPECT_EQ(color.green, green) << text;
        EXPECT_EQ(color.blue, blue) << text;
        EXPECT_EQ(color.outOfRange, outOfRange) << text;
    }
}
