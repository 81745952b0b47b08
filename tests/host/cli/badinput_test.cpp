// SPDX-License-Identifier: MIT
// Bad drawings: each gets one line that names it, status 2, and the others are still opened.
#include "programrun.h"

#include <algorithm>

namespace host::test {
namespace {

using testing::HasSubstr;

constexpr std::string_view svgStart = R"(<svg xmlns="http://www.w3.org/2000/svg">)";

std::string nestedGroups(int depth) {
    std::string text(svgStart);
    for (int i = 0; i < depth; ++i) {
        text += "<g>";
    }
    return text;
}

std::string entityBomb() {
    std::string text = "<!DOCTYPE svg [<!ENTITY a0 \"bombbomb\">";
    for (int i = 1; i < 12; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        text += "<!ENTITY a" + std::to_string(i) + " \"";
        for (int copies = 0; copies < 10; ++copies) {
            text += before;
        }
        text += "\">";
    }
    return text + "]>" + std::string(svgStart) + "<g><text>&a11;</text></g></svg>";
}

struct BadInput {
    const char* name;
    std::string content;
};

std::ostream& operator<<(std::ostream& stream, const BadInput& input) {
    return stream << input.name;
}

class ABadDrawing : public ProgramFixture, public testing::WithParamInterface<BadInput> {};

void expectOneLineAbout(const std::string& file, const ProgramResult& result) {
    EXPECT_EQ(result.status, 2) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("error: " + file + ":"));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold")) << "the good one was opened";
}

TEST_P(ABadDrawing, IsNamedAndTheOthersAreStillOpened) {
    const std::string bad = write(GetParam().name, GetParam().content);
    expectOneLineAbout(bad, run({"open", "--no-plugin", bad, goodDrawing()}));
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ABadDrawing,
    testing::Values(BadInput{"empty.svg", ""}, BadInput{"text.svg", "Dear reader,\nhello.\n"},
                    BadInput{"page.svg", "<html><body>no drawing</body></html>"},
                    BadInput{"cut.svg", std::string(svgStart) + "<g><text>cut o"},
                    BadInput{"binary.svg", std::string("\x7F\x45LF\0\0\1\2\xFF\xFE", 10)},
                    BadInput{"cut.svgz", std::string("\x1F\x8B\x08\0\0\0\0\0\0\3\x4B", 11)},
                    BadInput{"nested.svg", nestedGroups(2'000'000)},
                    BadInput{"entities.svg", entityBomb()}));

class AnUnreadablePlace : public ProgramFixture {};

TEST_F(AnUnreadablePlace, IsNamedAsABadDrawingIs) {
    const std::string none = folder / "none.svg";
    expectOneLineAbout(none, run({"open", "--no-plugin", none, goodDrawing()}));
    const std::string directory = folder / "folder.svg";
    std::filesystem::create_directory(directory);
    expectOneLineAbout(directory, run({"open", "--no-plugin", directory, goodDrawing()}));
}

TEST_F(AnUnreadablePlace, IsSaidInTheJsonReportToo) {
    const std::string none = folder / "none.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--report", "json", none});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("\"opened\": false"));
    EXPECT_THAT(result.output, HasSubstr("\"error\": \"" + none));
}

TEST_F(AnUnreadablePlace, ToSaveToLosesNothing) {
    const std::string drawing = goodDrawing();
    const std::string target = folder / "no" / "such" / "folder.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--save", target, drawing});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("error: " + target + ":"));
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold"));
}

} // namespace
} // namespace host::test
