// SPDX-License-Identifier: MIT
// Writing names the way style sheets can read them back.
#include "host/documents/css/css.h"
#include "host/documents/css/families.h"
#include "host/documents/css/spanrules.h"

#include <gtest/gtest.h>

namespace host::css {
namespace {

TEST(AQuotedName, ReadsBackAsItself) {
    for (const char* name : {"Plain", "It's", "Say \"x\"", "Back\\slash", "Line\nend", "a]]>b",
                             "M\xC3\xBCller", "\xF0\x9F\x98\x80 1", "1\303\274abc"}) {
        for (const char quote : {'"', '\''}) {
            for (const bool ascii : {false, true}) {
                const std::string text = quoted(name, quote, ascii);
                const auto families = readFamilies(text + ", serif");
                ASSERT_EQ(families.size(), 2U) << text;
                EXPECT_EQ(families[0].name, name) << text;
                EXPECT_EQ(text.find("]]>"), std::string::npos);
            }
        }
    }
}

TEST(AnEscape, TakesSixDigitsAndOneBlank) {
    EXPECT_EQ(unescape("\\26 B"), "&B");
    EXPECT_EQ(unescape("\\000026B"), "&B");
    EXPECT_EQ(unescape("\\26  B"), "& B");
    EXPECT_EQ(unescape("\\D800 x\\110000 \\0 "), "\xEF\xBF\xBDx\xEF\xBF\xBD\xEF\xBF\xBD");
    EXPECT_EQ(unescape("\\"), "");
    EXPECT_EQ(unescape("\\g\\\n"), "g");
}

TEST(ADeclaration, IsFoundWhateverStandsAroundIt) {
    DeclarationCursor cursor("a:url(x;y);b:';';; c : d\\;e ! IMPORTANT;f:{;};g;h:i !nonsense;j:k");
    std::string all;
    for (Declaration d; cursor.next(d);) {
        all.append(d.name).append("=").append(d.value).append(d.important ? "!|" : "|");
    }
    EXPECT_EQ(all, "a=url(x;y)|b=';'|c=d\\;e!|f={;}|j=k|");
}

TEST(ABlock, IsSeparatedFromWhatFollowsItOrNot) {
    for (const char* text : {"", "  ", "a:b;", "a:b; ", "a:';';", "a:b;/*;"}) {
        std::string storage;
        EXPECT_TRUE(endsSeparated(blankComments(text, storage))) << text;
    }
    for (const char* text : {"a:b", "a:';", "a:b\\;", "a:(;", "a:b/*;*/", ";a"}) {
        EXPECT_FALSE(endsSeparated(text)) << text;
    }
}

TEST(ARule, CatchesSpansOrDoesNot) {
    for (const char* sheet :
         {"tspan{fill:red}", "a{} b, .x > s|flowSpan {fill:red}", "/*a*/*{a:b}",
          "tspan{font:1px A}", "@media print{@supports(a:b){text *{a:b}}}", "tspan.a+tspan.b{a:b}",
          "tspan.a~tspan.b{a:b}", "@import 'x';.a:first-child{a:b}", "[style*='x']{a:b}",
          "} ;tspan{font-weight:bold;a:b", "tspan{x{a:b}}", "tspan{-inkscape-font:A}"}) {
        EXPECT_TRUE(hasRulesForSpans(sheet)) << sheet;
    }
    for (const char* sheet :
         {"", "text{fill:red}",
          "tspan{font-weight:bold;font-family:A;-inkscape-font-specification:A}",
          "tspan.a, .b,#c, t[d],[style][e]{a:b}", "tspan text{a:b}", "/*tspan{a:b}*/",
          "a{b:'tspan{c:d}'}", "@font-face{font-family:A;src:url(x)}", ":root{--a:b}",
          "text:hover,g+text{a:b}", "{", "@"}) {
        EXPECT_FALSE(hasRulesForSpans(sheet)) << sheet;
    }
}

} // namespace
} // namespace host::css
