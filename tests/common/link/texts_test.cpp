// SPDX-License-Identifier: MIT
// Texts and records: folded replies, the text helpers, the plug-in's font records.
#include "GLYFontInfo.h"
#include "replytext.h"
#include "textutils.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

using GLY::GLYFontInfo;
using Texts = std::vector<std::string>;

TEST(AFoldedReply, IsOneDocument) {
    const std::pair<std::string, std::string> cases[] = {
        {"<cmd>fontReply</cmd>\n<a>1</a>\n</cmd>\n", "<cmd>fontReply<a>1</a></cmd>"},
        {"<cmd>fontReply</cmd>\n<a>1</a>\n</cmd>", "<cmd>fontReply<a>1</a></cmd>"},
        {"<cmd>x</cmd>", "<cmd>x"}, // no line feed at all: left open
        {"</cmd>", "</cmd>"},
        {"a</cmd>\n</cmd>\nb</cmd>", "a</cmd>b"},
        {"\xc3\xa4</cmd>", "\xc3\xa4"},
        {"</cmd></cmd>", "</cmd>"}, // one end only
        {" </cmd>\n</cmd> \n</cmd>\r", " </cmd> </cmd>\r"},
        {"</CMD>x</CMD>", "</CMD>x</CMD>"},
        {"", ""},
        {"\n\n", ""},
        {"one\ntwo", "onetwo"},
    };
    for (const auto& [reply, folded] : cases) {
        std::string text = reply;
        GLY::foldReply(text);
        EXPECT_EQ(text, folded) << reply;
    }
}

TEST(AnAmpersand, IsEscapedEvenWhereItWas) {
    const std::pair<std::string, std::string> cases[] = {
        {"A & B", "A &amp; B"}, {"&amp;", "&amp;amp;"}, {"&&", "&amp;&amp;"},
        {"&", "&amp;"},         {"none", "none"},       {"", ""}};
    for (const auto& [text, escaped] : cases) {
        EXPECT_EQ(GLY::escapeAmpersands(text), escaped);
    }
}

TEST(AFileName, IsWhatFollowsTheLastSeparatorOfEitherKind) {
    for (const auto& [path, name] : std::vector<std::pair<std::string, std::string>>{
             {"a/b\\c", "c"}, {"a\\b/c", "c"}, {"bare", "bare"}, {"a/b/", ""}, {"", ""}}) {
        EXPECT_EQ(GLY::extractFilename(path), name) << path;
    }
}

TEST(Texts, AreSplitAtTheWholeDelimiterAndTrimmedOfBlanks) {
    EXPECT_EQ(GLY::tokenize("a::b", ":"), (Texts{"a", "", "b"}));
    EXPECT_EQ(GLY::tokenize("", ":"), (Texts{""}));
    EXPECT_EQ(GLY::tokenize("a:", ":", true), (Texts{"a", ""}));
    EXPECT_EQ(GLY::tokenize("a-b--c---d", "--"), (Texts{"a-b", "c", "-d"}));
    EXPECT_EQ(GLY::tokenize("ab", ""), (Texts{"ab"}));
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

using Record = Orvil::SmartPointer<GLYFontInfo>;

TEST(AFontRecord, KnowsItsTypeByKeywordAndTechnology) {
    const std::tuple<int, std::string, std::string> cases[] = {{0, "T1", "PostScript"},
                                                               {1, "TT", "TrueType"},
                                                               {2, "OT_T1", "OpenType PostScript"},
                                                               {3, "OT_TT", "OpenType TrueType"},
                                                               {4, "", "Unknown"},
                                                               {7, "", "Unknown"},
                                                               {-1, "", "Unknown"}};
    for (const auto& [type, keyword, technology] : cases) {
        GLYFontInfo info;
        info.font.type = static_cast<Protocol::Font::Type>(type);
        EXPECT_EQ(info.getTypeString(), keyword) << type;
        EXPECT_EQ(info.getTechnology(), technology) << type;
        if (!keyword.empty()) {
            EXPECT_EQ(GLYFontInfo::typeStringToEnum(keyword), type);
        }
    }
    for (const char* const text : {"", "ot_tt", "all", "OT_TT ", "Unknown"}) {
        EXPECT_EQ(GLYFontInfo::typeStringToEnum(text), 4) << text;
    }
}

TEST(ASetOfFontRecords, KeepsTheFirstOfEachFamilyInAscendingByteOrder) {
    std::set<Record, GLYFontInfo::SDescendingInfoSort> records;
    for (const auto& [family, psName] : std::vector<std::pair<std::string, std::string>>{
             {"b", "1"}, {"\xc3\xa4", "2"}, {"B", "3"}, {"b", "4"}, {"", "5"}}) {
        const Record record(new GLYFontInfo);
        record->font.familyName = family;
        record->font.psName = psName;
        records.insert(record);
    }
    std::string order;
    for (const Record& record : records) {
        order += record->font.psName;
    }
    EXPECT_EQ(order, "5312");
}
