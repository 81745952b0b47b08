// SPDX-License-Identifier: MIT
// Texts at the border: what counts as UTF-8, where a text is cut, how codes are written.
#include "host/core/text.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(ATextFromOutside, IsUtf8OnlyInItsStrictForm) {
    for (const char* text : {"", "plain", "\xC3\xA4", "\xE2\x82\xAC", "\xF0\x9F\x98\x80",
                             "\xF4\x8F\xBF\xBF", "\xEF\xBF\xBF"}) {
        EXPECT_TRUE(isUtf8(text)) << testing::PrintToString(text);
    }
    for (const char* text :
         {"\x80", "\xC0\xAF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", // alone; too long
          "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", // surrogate; too great
          "a\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC3\x28", "\xE2\x82\x28"}) { // cut off
        EXPECT_FALSE(isUtf8(text)) << testing::PrintToString(text);
    }
}

TEST(ACopiedText, EndsBetweenCharactersWithinItsBuffer) {
    struct Case {
        std::string text;
        std::int32_t size;
        std::string copied;
    };
    const Case cases[] = {
        {"abc", 4, "abc"},
        {"abc", 3, "ab"},
        {"abc", 1, ""},
        {"", 1, ""},
        {"a\xC3\xA4", 3, "a"},
        {"a\xC3\xA4", 4, "a\xC3\xA4"},
        {"\xF0\x9F\x98\x80", 4, ""},
        {"\xE2\x82\xAC\xE2\x82\xAC", 6, "\xE2\x82\xAC"},
    };
    for (const Case& each : cases) {
        std::string buffer(static_cast<std::size_t>(each.size) + 1, '#');
        copyText(each.text, buffer.data(), each.size);
        EXPECT_STREQ(buffer.c_str(), each.copied.c_str());
        EXPECT_EQ(buffer.back(), '#') << "wrote beyond the buffer";
    }
}

TEST(AStatusCode, IsReadAsItIsWritten) {
    const std::pair<SPErr, std::string> codes[] = {{FourChars("!MEM"), "'!MEM'"},
                                                   {FourChars("a'b "), "'a'b '"},
                                                   {-50, "-50"},
                                                   {16384, "16384"},
                                                   {0, "0"}};
    for (const auto& [code, text] : codes) {
        EXPECT_EQ(errorText(code), text);
        SPErr read = 1;
        EXPECT_TRUE(readError(text, read)) << text;
        EXPECT_EQ(read, code);
    }
    SPErr read = 1;
    EXPECT_TRUE(readError("ABCD", read));
    EXPECT_EQ(read, FourChars("ABCD"));
    for (const char* const wrong : {"", "ABC", "ABCDE", "12x", "99999999999"}) {
        EXPECT_FALSE(readError(wrong, read)) << wrong;
    }
}

} // namespace
} // namespace host
