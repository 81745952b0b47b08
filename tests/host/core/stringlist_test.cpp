// SPDX-License-Identifier: MIT
// String lists: what a file says, and what is said of a bad one.
#include "host/core/stringlists.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

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
