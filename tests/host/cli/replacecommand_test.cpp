// SPDX-License-Identifier: MIT
// The command that replaces fonts, as it is run, with a well-known family.
#include "host/cli/exitstatus.h"
#include "host/cli/textdifference.h"
#include "programrun.h"

namespace host::test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class TheReplaceCommand : public ProgramFixture {
protected:
    std::string drawing(const std::string& name, const std::string& family = "Old") const {
        return write(name, textIn(family));
    }
    static std::string textIn(const std::string& family) {
        return "<svg xmlns='http://www.w3.org/2000/svg'><text font-family='" + family +
               "'>Text</text></svg>";
    }
    const std::string rule_ = "--with=Old=DejaVu Sans";
};

TEST_F(TheReplaceCommand, WritesOneDrawingToAFileAndSeveralToAFolder) {
    const std::string old = drawing("in/a.svg");
    drawing("in/sub/b.svg");
    drawing("in/sub/c.svg", "Other");
    const auto one = run({"replace", rule_, "-o", folder / "new.svg", old});
    EXPECT_EQ(one.status, exitSuccess) << one.errors;
    EXPECT_THAT(one.output, AllOf(HasSubstr("Old Regular by DejaVu Sans"), HasSubstr("in 1 text\n"),
                                  HasSubstr("saved as ")));
    EXPECT_EQ(contentOf(folder / "new.svg"), textIn("DejaVu Sans"));
    EXPECT_EQ(contentOf(old), textIn("Old"));

    EXPECT_EQ(run({"replace", rule_, "-o", folder / "out", folder / "in"}).status, exitSuccess);
    EXPECT_EQ(contentOf(folder / "out/a.svg"), textIn("DejaVu Sans"));
    EXPECT_EQ(contentOf(folder / "out/sub/b.svg"), textIn("DejaVu Sans"));
    EXPECT_EQ(contentOf(folder / "out/sub/c.svg"), textIn("Other")) << "the set is whole";

    const auto over = run({"replace", rule_, "-o", folder / "in", old});
    EXPECT_EQ(over.status, exitDocumentFailed);
    EXPECT_THAT(over.errors, HasSubstr("a.svg: would be written over; --in-place does so"));
    EXPECT_EQ(contentOf(old), textIn("Old"));
}

TEST_F(TheReplaceCommand, WritesNoTwoDrawingsToOnePlace) {
    const std::string one = drawing("one/a.svg");
    const std::string other = drawing("other/a.svg", "Other");
    const auto result = run({"replace", rule_, "-o", folder / "out", one, other});
    EXPECT_EQ(result.status, exitDocumentFailed);
    EXPECT_THAT(result.errors, HasSubstr(other + ": another drawing was saved as "));
    EXPECT_EQ(contentOf(folder / "out/a.svg"), textIn("DejaVu Sans"));
}

TEST_F(TheReplaceCommand, KeepsEachOldDrawingBesideTheNewOne) {
    const std::string file = drawing("a.svg");
    const std::string other = drawing("b.svg", "Other");
    EXPECT_EQ(run({"replace", rule_, "--in-place", file, other}).status, exitSuccess);
    EXPECT_EQ(contentOf(file), textIn("DejaVu Sans"));
    EXPECT_EQ(contentOf(file + ".orig"), textIn("Old"));
    EXPECT_FALSE(std::filesystem::exists(other + ".orig"));
    EXPECT_EQ(run({"replace", "--with=DejaVu Sans=DejaVu Sans Mono", "--in-place", file}).status,
              exitSuccess);
    EXPECT_EQ(contentOf(file), textIn("DejaVu Sans Mono"));
    EXPECT_EQ(contentOf(file + ".orig"), textIn("Old"));
    EXPECT_EQ(contentOf(file + ".orig2"), textIn("DejaVu Sans"));
}

TEST_F(TheReplaceCommand, ShowsWhatItWouldDo) {
    const std::string file = drawing("a.svg");
    const auto result = run({"replace", rule_, "--dry-run", file});
    EXPECT_EQ(result.status, exitSuccess) << result.errors;
    EXPECT_THAT(result.output,
                AllOf(HasSubstr("--- " + file + "\n+++ " + file + "\n"),
                      HasSubstr("\n-" + textIn("Old")), HasSubstr("\n+" + textIn("DejaVu Sans"))));
    EXPECT_EQ(contentOf(file), textIn("Old"));
    EXPECT_EQ(differenceOf("a\n", "a\n", "x"), "");
}

TEST_F(TheReplaceCommand, GoesOnPastDrawingsThatItMustLeaveAlone) {
    const std::string first = drawing("a.svg", "First");
    const std::string second = drawing("b.svg");
    const std::string table = write("t", "First = No Such Font\nOld = DejaVu Sans\n");
    const auto result =
        run({"replace", "--table", table, "--in-place", first, write("bad.svg", "<svg"), second});
    EXPECT_EQ(result.status, exitDocumentFailed);
    EXPECT_THAT(result.errors,
                AllOf(HasSubstr("a.svg: the desktop has no font No Such Font (" + table + ":1)\n"),
                      HasSubstr("bad.svg:1")));
    EXPECT_EQ(contentOf(first), textIn("First"));
    EXPECT_FALSE(std::filesystem::exists(first + ".orig"));
    EXPECT_EQ(contentOf(second), textIn("DejaVu Sans"));
}

TEST_F(TheReplaceCommand, WantsRulesAndATarget) {
    const std::string file = drawing("a.svg");
    const std::vector<std::string> cases[] = {
        {"replace", file, "--dry-run"},
        {"replace", file, rule_},
        {"replace", file, "--with=Old", "--dry-run"},
        {"replace", file, "--table", folder / "none", "--dry-run"},
        {"replace", file, rule_, "--in-place", "-o", "x"},
        {"replace", rule_, "--dry-run"},
    };
    for (const auto& arguments : cases) {
        EXPECT_EQ(run(arguments).status, exitUsage) << testing::PrintToString(arguments);
    }
}

} // namespace
} // namespace host::test
