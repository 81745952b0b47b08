// SPDX-License-Identifier: MIT
// Conversions of whole texts.
#include "misc/text/utf.h"

#include <gtest/gtest.h>

#include <locale>
#include <string>
#include <utility>

using namespace Orvil;

TEST(AWholeText, IsConvertedOrEmpty) {
    std::string longText;
    std::u16string longWide;
    for (int i = 0; i < 3000; ++i) {
        longText += i % 7 == 0 ? "\xF0\x9F\x98\x80" : "\xE4\xB8\x80z\xC3\xA4";
        longWide += i % 7 == 0 ? u"\U0001F600" : u"\u4E00z\u00E4";
    }
    const std::string nul("a\0b", 3);
    const std::pair<std::string, std::u16string> cases[] = {
        {"", u""},
        {"Grotesk", u"Grotesk"},
        {nul, std::u16string(u"a\0b", 3)},
        {"\xC3\xA4\xE2\x82\xAC", u"\u00E4\u20AC"},
        {longText, longWide}};
    for (const auto& [utf8, utf16] : cases) {
        EXPECT_EQ(UTF8toUTF16(utf8), utf16);
        EXPECT_EQ(UTF16toUTF8(utf16), utf8);
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
