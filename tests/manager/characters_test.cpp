// SPDX-License-Identifier: MIT
// Finding characters of a face by what is typed.
#include "manager/view/characters.h"

#include <gtest/gtest.h>

using namespace manager;

namespace {

TEST(TheCharactersOfAFace, AreFoundByWordsCodesAndThemselves) {
    const Characters characters({{U'\n', U'\n'},
                                 {U'A', U'C'},
                                 {U'a', U'c'},
                                 {U'Ä', U'Ä'},
                                 {U'€', U'€'},
                                 {U'→', U'→'},
                                 {0x23AF, 0x23AF},
                                 {U'漢', U'漢'}});
    const struct {
        std::string_view typed;
        std::u32string_view found;
    } cases[] = {
        {"letter B", U"Bb"},  {"b letter small", U"b"},
        {"a", U"aAÄ"}, // itself first
        {"letter a", U"aAÄ"}, {"capital a", U"AÄ"},
        {"diaer", U"Ä"},      {"rrow", U""}, // words begin so
        {"arrow", U"→"},      {"extension", U"\u23AF"},
        {"control", U"\n"},   {"U+20ac", U"€"},
        {"20AC", U"€"},       {"u+20a", U""},
        {"€", U"€"},          {"→€x漢", U"€→漢"},
        {"漢 arrow", U""},    {"cjk unified 6f22", U"漢"},
        {"\xC3", U""}, // cut
        {"U+", U""},
    };
    for (const auto& [typed, found] : cases) {
        const std::vector<char32_t> expected(found.begin(), found.end());
        EXPECT_EQ(characters.find(typed), expected) << typed;
    }
    EXPECT_EQ(characters.find("  "), characters.all());
}

TEST(TheCharactersOfAFace, AreThoseThatUnicodeHasPlacesFor) {
    EXPECT_EQ(Characters({{0xD7FF, 0xE000}, {0x10FFFF, 0xFFFFFFFF}}).all(),
              (std::vector<char32_t>{0xD7FF, 0xE000, 0x10FFFF}));
}

} // namespace
