// SPDX-License-Identifier: MIT
// The two written forms of a report, and the exit status.
#include "host/cli/exitstatus.h"
#include "host/cli/report.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace host::test {
namespace {

FaceOutcome outcome(std::string family, FaceState before, FaceState after) {
    FaceOutcome face;
    face.family = std::move(family);
    face.style = "Bold";
    face.postScriptName = "X-Bold";
    face.runs = 2;
    face.runsNow = 2;
    face.before = before;
    face.after = after;
    return face;
}

DocumentReport documentWith(std::vector<FaceOutcome> faces) {
    DocumentReport document;
    document.file = "d.svg";
    document.opened = true;
    document.faces = std::move(faces);
    return document;
}

TEST(AReport, HasOneExitStatusOfSeveralReasons) {
    RunReport report;
    EXPECT_EQ(report.exitStatus(true), exitSuccess);
    report.documents.push_back(
        documentWith({outcome("A", FaceState::Missing, FaceState::ActivatedNow)}));
    EXPECT_EQ(report.exitStatus(true), exitSuccess);
    report.documents.push_back(
        documentWith({outcome("A", FaceState::Missing, FaceState::Missing)}));
    EXPECT_EQ(report.exitStatus(true), exitFontsMissing);
    EXPECT_EQ(report.exitStatus(false), exitSuccess);
    report.documents[0].error = "e";
    EXPECT_EQ(report.exitStatus(true), exitDocumentFailed);
    report.documents[1].checkFailed = true;
    EXPECT_EQ(report.exitStatus(true), exitPluginFailed);
    report.documents[1].checkFailed = false;
    report.pluginFailed = true;
    EXPECT_EQ(report.exitStatus(true), exitPluginFailed);
    report.answersFailed = true;
    EXPECT_EQ(report.exitStatus(true), exitAnswersFailed);
}

TEST(AReport, IsATableWithAlignedColumns) {
    FaceOutcome replaced = outcome("\xE6\x96\x87", // twice as wide as a letter
                                   FaceState::Missing, FaceState::Replaced);
    replaced.runsNow = 0;
    FaceOutcome came = outcome("C\n\x1B[31m", FaceState::Installed, FaceState::Installed);
    came.before.reset();
    came.runs = 0;
    const std::string text = textOfDocument(documentWith(
        {outcome("\xC3\x84rger", FaceState::Missing, FaceState::ActivatedNow), replaced, came}));
    EXPECT_EQ(text, "d.svg\n"
                    "  face          PostScript name  before   after          runs\n"
                    "  \xC3\x84rger Bold    X-Bold           missing  activated now  2\n"
                    "  \xE6\x96\x87 Bold       X-Bold           missing  replaced       2 -> 0\n"
                    "  C??[31m Bold  X-Bold           -        installed      0 -> 2\n");
    EXPECT_EQ(textOfDocument(documentWith({})), "d.svg\n  no text\n");
    DocumentReport oddNames = documentWith({replaced});
    oddNames.file = "d\x1B[2J\n.svg";
    oddNames.savedAs = "e\r.svg";
    EXPECT_THAT(textOfDocument(oddNames), testing::StartsWith("d?[2J?.svg\n"));
    EXPECT_THAT(textOfDocument(oddNames), testing::HasSubstr("  saved as e?.svg\n"));
    EXPECT_EQ(textOfDocument({}), "");
}

TEST(AReport, TellsOfDialogs) {
    DocumentReport document = documentWith({});
    ShownDialog dialog;
    dialog.title = "Fonts\x1B";
    dialog.rows = {{0, "A, Bold"}, {1, "from \"text\""}};
    dialog.buttons = {{1, "OK", true}, {3, "Show", false}};
    dialog.ending = {1, false};
    document.dialogs = {dialog};
    const std::string end = "; it had shown\n    A, Bold\n      from \"text\"\n"
                            "    button 1: OK\n    button 3: Show (disabled)\n";
    const std::string begin = "d.svg\n  no text\n  dialog \"Fonts?\", ";
    EXPECT_EQ(textOfDocument(document), begin + "ended by item 1" + end);
    document.dialogs[0].givenUp = true;
    EXPECT_EQ(textOfDocument(document), begin + "given up" + end);
    document.dialogs[0].rows.resize(1000);
    EXPECT_THAT(textOfDocument(document), testing::HasSubstr("    and 950 more rows\n"));

    RunReport report;
    report.documents.push_back(document);
    const auto json = nlohmann::json::parse(jsonOf(report))["documents"][0]["dialogs"][0];
    EXPECT_EQ(json["title"], "Fonts\x1B");
    EXPECT_EQ(json["rows"].size(), 1000U);
    EXPECT_EQ(json["rows"][1], (nlohmann::json{{"level", 1}, {"words", "from \"text\""}}));
    EXPECT_EQ(json["buttons"][1],
              (nlohmann::json{{"item", 3}, {"text", "Show"}, {"enabled", false}}));
    EXPECT_EQ(json["endedBy"], 1);
    EXPECT_EQ(json["givenUp"], true);
}

TEST(AReport, ShowsNoCharacterThatMovesTheCursorOrTurnsText) {
    DocumentReport document = documentWith({});
    for (const auto& [name, shown] :
         {std::pair{"a\xC2\x9B"
                    "31m",
                    "a?31m"},
          std::pair{"\xE2\x80\xAEgvs", "?gvs"},
          std::pair{"\xE2\x81\xA6\xE2\x80\x8F\xD8\x9C", "???"}, std::pair{"\x9B\xC3", "??"},
          std::pair{"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
                    "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"}}) {
        document.file = name;
        EXPECT_EQ(textOfDocument(document), std::string(shown) + "\n  no text\n");
    }
}

TEST(AReport, GrowsByItsNamesAndNotByTheLongestOne) {
    std::vector<FaceOutcome> faces(4000, outcome("A", FaceState::Missing, FaceState::Missing));
    faces.front().family = std::string(100'000, 'x');
    EXPECT_LT(textOfDocument(documentWith(faces)).size(), 1'000'000U);
}

TEST(AReport, IsValidJsonWhateverBytesItHolds) {
    RunReport report;
    report.documents.push_back(
        documentWith({outcome("\xFF\"\n", FaceState::Missing, FaceState::Missing)}));
    report.documents[0].file = "bad\xC3name";
    report.alerts.push_back({AlertKind::About, "p", "t", "line\nline"});
    const nlohmann::json json = nlohmann::json::parse(jsonOf(report));
    EXPECT_TRUE(json["plugin"].is_null());
    EXPECT_EQ(json["documents"][0]["missesFonts"], true);
    EXPECT_EQ(json["documents"][0]["faces"][0]["family"], "\xEF\xBF\xBD\"\n");
    EXPECT_EQ(json["alerts"][0]["kind"], "about");
}

} // namespace
} // namespace host::test
