// SPDX-License-Identifier: MIT
// Writing names the way style sheets can read them back.
#include "host/documents/css/childplace.h"
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

TEST(ASeriesOfPlaces, IsReadInAllItsForms) {
    struct Case {
        const char* text;
        std::vector<std::int64_t> places; ///< of the first seven
    };
    for (const Case& c :
         {Case{"odd", {1, 3, 5, 7}}, Case{" EVEN ", {2, 4, 6}}, Case{"3", {3}}, Case{"+3", {3}},
          Case{"-3", {}}, Case{"0", {}}, Case{"n", {1, 2, 3, 4, 5, 6, 7}}, Case{"3n", {3, 6}},
          Case{"3N+1", {1, 4, 7}}, Case{"+3n - 1", {2, 5}}, Case{"-n+3", {1, 2, 3}},
          Case{"-2n+5", {1, 3, 5}}, Case{"0n+2", {2}}, Case{"2n-7", {1, 3, 5, 7}}}) {
        const auto series = readPlaceSeries(c.text);
        ASSERT_TRUE(series) << c.text;
        std::vector<std::int64_t> places;
        for (std::int64_t place = 1; place <= 7; ++place) {
            if (series->holds(place)) {
                places.push_back(place);
            }
        }
        EXPECT_EQ(places, c.places) << c.text;
    }
    for (const char* text :
         {"", "x", "+", "+-3", "2n+", "2n 3", "2n+-3", "n n", "99999999999", "2.5", "odd even"}) {
        EXPECT_FALSE(readPlaceSeries(text)) << text;
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
