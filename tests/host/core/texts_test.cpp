// SPDX-License-Identifier: MIT
// Texts: at the border to plug-ins, in string lists, and the host's own in the user's language.
#include "host/core/stringlists.h"
#include "host/core/text.h"
#include "host/core/translation.h"
#include "tests/host/core/recordingfrontend.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

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

namespace host {
namespace {

std::vector<std::string> problemsOf(std::string_view content, StringList* result = nullptr) {
    std::vector<std::string> problems;
    StringList list = readStringList(
        content, "x.strings", [&](std::string_view problem) { problems.emplace_back(problem); });
    if (result != nullptr) {
        *result = std::move(list);
    }
    return problems;
}

TEST(AStringList, IsReadByItsLines) {
    StringList list;
    EXPECT_THAT(problemsOf("\xEF\xBB\xBF# comment\n"
                           "1 = one\n"
                           "\n"
                           "  2=two = zwei  \r\n"
                           "30 = a\\nb\\\\c\n"
                           "4 =\n"
                           "5 = gr\xC3\xBC\xC3\x9F # no comment",
                           &list),
                IsEmpty());
    EXPECT_THAT(list,
                UnorderedElementsAre(Pair(1, "one"), Pair(2, "two = zwei"), Pair(30, "a\nb\\c"),
                                     Pair(4, ""), Pair(5, "gr\xC3\xBC\xC3\x9F # no comment")));
}

TEST(AStringList, NamesFileAndLineOfWhatItLeavesOut) {
    StringList list;
    EXPECT_THAT(problemsOf("1 = one\n"
                           "two = 2\n"
                           "0 = zero\n"
                           "-1 = minus\n"
                           "3\n"
                           "4 = bad \\t escape\n"
                           "5 = cut off \\\n"
                           "1 = again\n"
                           "6 = \xFF\n"
                           "99999999999 = far\n"
                           "7 = seven\n",
                           &list),
                ElementsAre("x.strings:2: the index is not a number from 1",
                            "x.strings:3: the index is not a number from 1",
                            "x.strings:4: the index is not a number from 1",
                            "x.strings:5: expected \"index = text\"",
                            "x.strings:6: unknown escape; only \\n and \\\\ are known",
                            "x.strings:7: unknown escape; only \\n and \\\\ are known",
                            "x.strings:8: the index stands here twice",
                            "x.strings:9: not valid UTF-8",
                            "x.strings:10: the index is not a number from 1"));
    EXPECT_THAT(list, UnorderedElementsAre(Pair(1, "one"), Pair(7, "seven")));
}

TEST(AStringList, LosesOnlyItsTailWhenItIsCutAnywhere) {
    const std::string whole = "1 = one\n2 = two\\n\n3 = dr\xC3\xA4i\n";
    StringList full;
    problemsOf(whole, &full);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string cut = whole.substr(0, length);
        StringList list;
        problemsOf(cut, &list);
        const auto wholeLines = std::count(cut.begin(), cut.end(), '\n');
        for (std::int32_t index = 1; index <= wholeLines; ++index) {
            EXPECT_EQ(list[index], full[index]) << length;
        }
    }
}

TEST(TheStringListsOfABundle, AreReadFromItsFolder) {
    const testsupport::TemporaryFolder place;
    const auto folder = place / "lists";
    std::filesystem::create_directories(folder / "3.strings");
    place.write("lists/1.strings", "1 = one\nnonsense\n");
    std::vector<std::string> problems;
    StringLists lists(folder, [&](std::string_view problem) { problems.emplace_back(problem); });

    ASSERT_NE(lists.find(1, 1), nullptr);
    EXPECT_EQ(*lists.find(1, 1), "one");
    EXPECT_EQ(lists.find(1, 2), nullptr);
    EXPECT_EQ(lists.find(2, 1), nullptr);
    EXPECT_EQ(lists.find(3, 1), nullptr);
    EXPECT_EQ(lists.find(3, 1), nullptr);
    // Each list is read, and complained of, once.
    EXPECT_THAT(problems,
                ElementsAre((folder / "1.strings").string() + ":2: expected \"index = text\"",
                            (folder / "3.strings").string() + ": cannot be read"));
}

} // namespace
} // namespace host

namespace host::test {
namespace {

TEST(ATranslation, IsOfExactlyTheLocaleThatPluginsAreTold) {
    chooseLanguage("de_DE");
    for (const char* const text : {"", "of no catalogue", "%s", "\xC3\xA4"}) {
        EXPECT_EQ(translated(text), text);
    }
    for (const std::string locale : {"de_DE", "en_US", "de_DE", "de_AT", "de", "de_DE.UTF-8",
                                     "de_DE@euro", "de_AT:de_DE", ""}) {
        SCOPED_TRACE(locale);
        RecordingFrontend frontend;
        const Core core(frontend, {locale});
        EXPECT_EQ(translated("Missing fonts"),
                  locale == "de_DE" ? "Fehlende Schriften" : "Missing fonts");
    }
}

} // namespace
} // namespace host::test
