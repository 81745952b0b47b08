// SPDX-License-Identifier: MIT
// Texts at the border: what counts as UTF-8, where a text is cut, how codes are written.
#include "host/core/text.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(ATextFromOutside, IsUtf8OnlyInItsStrictForm) {
    struct Case {
        std::string text;
        bool valid;
    };
    const Case cases[] = {
        {"", true},
        {"plain", true},
        {"\xC3\xA4", true},
        {"\xE2\x82\xAC", true},
        {"\xF0\x9F\x98\x80", true},
        {"\xF4\x8F\xBF\xBF", true},
        {"\xEF\xBF\xBF", true},
        {"\x80", false},             // continuation alone
        {"\xC0\xAF", false},         // overlong
        {"\xE0\x9F\xBF", false},     // overlong
        {"\xF0\x8F\xBF\xBF", false}, // overlong
        {"\xED\xA0\x80", false},     // surrogate
        {"\xF4\x90\x80\x80", false}, // beyond the last character
        {"\xF5\x80\x80\x80", false},
        {"a\xC3", false}, // cut off
        {"\xE2\x82", false},
        {"\xF0\x9F\x98", false},
        {"\xC3\x28", false},
        {"\xE2\x82\x28", false},
    };
    for (const Case& each : cases) {
        EXPECT_EQ(isUtf8(each.text), each.valid) << testing::PrintToString(each.text);
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
