// SPDX-License-Identifier: MIT
// The command that checks drawings, as it is run.
#include "host/cli/exitstatus.h"
#include "programrun.h"

#include <nlohmann/json.hpp>

namespace host::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

class TheCheckCommand : public ProgramFixture {
protected:
    std::string drawing(const std::string& name, const std::string& family) const {
        return write(name, "<svg xmlns='http://www.w3.org/2000/svg'><text id='t' font-family='" +
                               family + "'>Text</text></svg>");
    }
};

TEST_F(TheCheckCommand, PrintsALineForEachDrawingAndASummary) {
    goodDrawing("d/b.svg");
    drawing("d/a.svg", "sans-serif");
    write("d/none.svg", "<svg xmlns='http://www.w3.org/2000/svg'/>");
    const std::string bad = write("d/odd.svg", "<svg");
    const ProgramResult result = run({"check", folder / "d"});
    EXPECT_EQ(result.status, exitDocumentFailed);
    EXPECT_THAT(result.output,
                MatchesRegex(".*/a.svg: 1 face, none missing\n"
                             ".*/b.svg: 1 face, 1 missing: No Such Face Bold\n"
                             ".*/none.svg: no text\n"
                             ".*/odd.svg: could not be read\n\n"
                             "4 drawings: 2 with all fonts, 1 without some, 1 that could not be "
                             "read\n\n"
                             "  missing face +drawings +texts +drawn in\n"
                             "  No Such Face Bold +1 +1 +[^\n]+\n"));
    EXPECT_THAT(result.errors, MatchesRegex("error: " + bad + ":1[^\n]*\n"));
    write("d/sign.svg", "<svg xmlns='http://www.w3.org/2000/svg'><text>x&#x10FF00;</text></svg>");
    const ProgramResult missing = run({"check", "--missing-only", folder / "d"});
    EXPECT_THAT(missing.output,
                AllOf(Not(HasSubstr("a.svg")), HasSubstr("b.svg"), Not(HasSubstr("none.svg")),
                      HasSubstr("odd.svg"), HasSubstr("none missing; no font has U+10FF00 ")));
}

TEST_F(TheCheckCommand, TellsMissingFontsAndUnreadableDrawingsApart) {
    const std::string good = drawing("good.svg", "serif");
    const std::string lacking = goodDrawing("lacking.svg");
    const std::string bad = write("bad.svg", "<svg");
    const struct {
        std::vector<std::string> arguments;
        int status;
    } cases[] = {
        {{good, lacking}, exitSuccess},
        {{good, "--fail-on-missing"}, exitSuccess},
        {{good, lacking, "--fail-on-missing"}, exitFontsMissing},
        {{good, bad}, exitDocumentFailed},
        {{bad, lacking}, exitDocumentFailed},
        {{bad, "--fail-on-missing"}, exitDocumentFailed},
        {{bad, lacking, "--fail-on-missing"}, exitMissingAndFailed},
        {{}, exitUsage},
        {{good, "--jobs", "0"}, exitUsage},
        {{"--files-from", folder / "not there"}, exitUsage},
        {{"--files-from", folder.path()}, exitUsage},
    };
    for (auto [arguments, status] : cases) {
        arguments.insert(arguments.begin(), "check");
        EXPECT_EQ(run(arguments).status, status) << testing::PrintToString(arguments);
    }
    EXPECT_EQ(run({"check", good}, "/dev/full").status, exitOutputFailed);
}

TEST_F(TheCheckCommand, TakesAListAndADrawingFromStandardInput) {
    const std::string one = drawing("one.svg", "serif");
    const std::string list = write("list", one + "\n" + goodDrawing("two.svg") + "\n");
    EXPECT_THAT(run({"check", "--files-from", list}).output,
                AllOf(HasSubstr("one.svg: 1 face"), HasSubstr("two.svg: 1 face")));
    EXPECT_THAT(runWithInput({"check", "-"}, one).output, HasSubstr("-: 1 face, none missing\n"));
    EXPECT_THAT(runWithInput({"check", "--files-from", "-"}, list).output,
                HasSubstr("2 drawings:"));
}

TEST_F(TheCheckCommand, WritesOneDocumentOrALineForEachDrawing) {
    const std::vector<std::string> files{goodDrawing("lacking.svg"), write("bad.svg", "<svg"),
                                         drawing("good.svg", "serif")};
    const auto whole = nlohmann::json::parse(
        run({"check", "--report", "json", files[0], files[1], files[2]}).output);
    ASSERT_EQ(whole["drawings"].size(), 3U);
    const auto& face = whole["drawings"][0]["faces"][0];
    EXPECT_EQ(face["family"], "No Such Face");
    EXPECT_EQ(face["weight"], 700);
    EXPECT_EQ(face["state"], "missing");
    EXPECT_EQ(face["font"], nullptr);
    EXPECT_THAT(face["drawnIn"]["file"].get<std::string>(), Not(IsEmpty()));
    EXPECT_EQ(face["places"][0]["words"], "Text");
    EXPECT_EQ(whole["drawings"][0]["missesFonts"], true);
    EXPECT_EQ(whole["drawings"][1]["opened"], false);
    EXPECT_THAT(whole["drawings"][1]["error"].get<std::string>(), HasSubstr("bad.svg:1"));
    EXPECT_EQ(whole["drawings"][2]["faces"][0]["state"], "generic");
    EXPECT_EQ(whole["summary"]["missing"][0]["drawings"], 1);

    std::istringstream lines(
        run({"check", "--report", "jsonl", files[0], files[1], files[2]}).output);
    auto parts = nlohmann::json::array();
    for (std::string line; std::getline(lines, line);) {
        parts.push_back(nlohmann::json::parse(line));
    }
    ASSERT_EQ(parts.size(), 4U);
    EXPECT_EQ(parts[3]["summary"], whole["summary"]);
    parts.erase(3);
    EXPECT_EQ(parts, whole["drawings"]);
    EXPECT_EQ(nlohmann::json::parse(
                  run({"check", "--report", "json", "--missing-only", files[2]}).output)["drawings"]
                  .size(),
              0U);
}

} // namespace
} // namespace host::test
