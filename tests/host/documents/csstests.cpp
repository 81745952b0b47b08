// SPDX-License-Identifier: MIT
// Writing names the way style sheets can read them back.
#include "host/documents/css.h"
#include "host/documents/fontvalues.h"

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

} // namespace
} // namespace host::css
