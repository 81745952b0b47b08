// SPDX-License-Identifier: MIT
// Reading commands, hostile ones above all.
#include "manager/exchange/commandtext.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace manager;
using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

const std::string sample = "<cmd>fontRequest</cmd>\n"
                           "<targetApp>ART5</targetApp>\n"
                           "<targetClass>FILC</targetClass>\n"
                           "<targetPid>4711</targetPid>\n"
                           "<protocolVersion>1.00</protocolVersion>\n"
                           "<font>\n"
                           "<syncID>a <b> & c</syncID></syncID>\n"
                           "<psName>Foo-Bold</psName>\n"
                           "<type>OT_T1</type>\n"
                           "<familyName>M\xC3\xBCller & S\xC3\xB6hne</familyName>\n"
                           "<styleName></styleName>\n"
                           "</font>\n"
                           "<font>\n"
                           "<syncID></syncID>\n"
                           "<psName>]]></psName>\n"
                           "</font>\n"
                           "</cmd>\n";

TEST(ACommand, IsReadByLinesWithItsValuesAsTheyStand) {
    const Command command = parseCommand(sample);
    EXPECT_EQ(command.kind, CommandKind::FontRequest);
    EXPECT_EQ(command.targetPid, 4711);
    EXPECT_EQ(command.targetClass, "FILC");
    ASSERT_THAT(command.fonts, SizeIs(2));
    EXPECT_EQ(command.fonts[0].syncId, "a <b> & c</syncID>");
    EXPECT_EQ(command.fonts[0].type, faces::Technology::OpenTypePostScript);
    EXPECT_EQ(command.fonts[0].familyName, "M\xC3\xBCller & S\xC3\xB6hne");
    EXPECT_EQ(command.fonts[0].styleName, "");
    EXPECT_EQ(command.fonts[0].containerId, std::nullopt);
    EXPECT_EQ(command.fonts[1].postScriptName, "]]>");
    EXPECT_EQ(command.fonts[1].type, std::nullopt);
}

TEST(ACommand, MayNameNoFontsAndHoldElementsOfLaterVersions) {
    const Command command = parseCommand("<cmd>showRequest</cmd>\n<later>x</later>\n</cmd>");
    EXPECT_EQ(command.kind, CommandKind::ShowRequest);
    EXPECT_THAT(command.fonts, IsEmpty());
    EXPECT_EQ(parseCommand("<cmd>dance</cmd>\n</cmd>\n\n").kind, CommandKind::Unknown);
}

TEST(ACommand, CutAnywhereIsRefusedWithTheLineWhereItEnds) {
    // Without its last line feed it is whole.
    for (std::size_t length = 0; length + 1 < sample.size(); ++length) {
        const std::string cut = sample.substr(0, length);
        const auto line = 1 + std::count(cut.begin(), cut.end(), '\n');
        try {
            static_cast<void>(parseCommand(cut));
            ADD_FAILURE() << "cut at " << length;
        } catch (const MalformedCommand& error) {
            // A line that lacks but its line feed is whole: the next one is missing.
            EXPECT_THAT(
                error.what(),
                AnyOf(StartsWith("command, line " + std::to_string(line) + ": "),
                      StartsWith("command, line " + std::to_string(line + 1) + ": the text ends")))
                << "cut at " << length;
        }
    }
    EXPECT_NO_THROW(static_cast<void>(parseCommand(sample.substr(0, sample.size() - 1))));
}

TEST(ACommand, ThatIsMalformedIsRefusedWithTheLineAndTheFault) {
    const std::string head = "<cmd>fontRequest</cmd>\n";
    const struct {
        std::string text;
        const char* expected;
    } cases[] = {
        {"", "line 1: the text ends, expected <cmd>"},
        {"fontRequest", "line 1: expected an element"},
        {"<cmd></cmd>\n</cmd>", "line 1: expected <cmd> with a command word"},
        {"<font>x</font>\n</cmd>", "line 1: expected <cmd> with a command word"},
        {head + "\n</cmd>", "line 2: expected an element"},
        {head + "<a>x</b>\n</cmd>", "line 2: expected </a> at the end"},
        {head + "<a>\n</cmd>", "line 2: expected </a> at the end"},
        {head + "<a></a\n</cmd>", "line 2: expected </a> at the end"},
        {head + "<>x</>\n</cmd>", "line 2: expected an element"},
        {head + "<targetPid>12x</targetPid>\n</cmd>", "line 2: expected a process id"},
        {head + "<targetPid>-5</targetPid>\n</cmd>", "line 2: expected a process id"},
        {head + "<targetPid>99999999999</targetPid>\n</cmd>", "line 2: expected a process id"},
        {head + "<targetClass>FIL</targetClass>\n</cmd>", "line 2: expected four bytes"},
        {head + "</cmd>\nmore\n", "line 3: text after the closing </cmd>"},
        {head + "<font>\r\n</font>\n</cmd>", "line 2: expected </font>"},
        {std::string("<c\0md>x</cmd>", 13), "line 1: expected an element"},
    };
    for (const auto& [text, expected] : cases) {
        try {
            static_cast<void>(parseCommand(text));
            ADD_FAILURE() << text;
        } catch (const MalformedCommand& error) {
            EXPECT_THAT(error.what(), HasSubstr(expected)) << text;
        }
    }
}

TEST(ACommand, PassesOverAMalformedFontAndKeepsTheOthers) {
    const struct {
        const char* lines;
        const char* expected;
    } cases[] = {
        {"<psName>x</psName>\n", "line 8: a font without <syncID>"},
        {"<syncID>x</syncID>\n", "line 8: a font without <psName>"},
        {"<syncID>x</syncID>\n<syncID>x</syncID>\n<psName>x</psName>\n",
         "line 8: a second <syncID>"},
        {"<type>TT</type>\n<type>TT</type>\n", "line 8: a second <type>"},
        {"<type>tt</type>\n", "line 7: unknown type"},
        {"<font>\n", "line 7: expected </font>"},
        {"<syncID>1</syncID>\n<psName>two\nlines</psName>\n", "line 8: expected </psName>"},
    };
    for (const auto& [lines, expected] : cases) {
        const Command command = parseCommand(
            "<cmd>fontRequest</cmd>\n<font>\n<syncID>1</syncID>\n<psName>A</psName>\n"
            "</font>\n<font>\n" +
            std::string(lines) +
            "</font>\n<font>\n<syncID>2</syncID>\n<psName>B</psName>\n</font>\n</cmd>\n");
        EXPECT_THAT(command.problems, ElementsAre(HasSubstr(expected)));
        ASSERT_THAT(command.fonts, SizeIs(2)) << expected;
        EXPECT_EQ(command.fonts[0].postScriptName, "A");
        EXPECT_EQ(command.fonts[1].postScriptName, "B");
    }
}

TEST(ACommand, TellsFewOfManyFaultsAndPassesOverWhatIsTooMuch) {
    std::string text = "<cmd>buyRequest</cmd>\n<font>\n<psName>A</psName>\n</font>\n";
    for (std::size_t i = 0; i < maximumFonts; ++i) {
        text += "<font>\n</font>\n";
    }
    const Command command = parseCommand(text + "</cmd>\n");
    EXPECT_THAT(command.fonts, SizeIs(1));
    ASSERT_THAT(command.problems, SizeIs(102));
    EXPECT_THAT(command.problems[100], HasSubstr("and 9899 more"));
    EXPECT_THAT(command.problems[101], HasSubstr("10001 fonts; those beyond"));
}

} // namespace
