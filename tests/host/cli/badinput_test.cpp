// SPDX-License-Identifier: MIT
// Bad drawings: each gets one line that names it, status 2, and the others are still opened.
#include "programrun.h"

#include <algorithm>

namespace host::test {
namespace {

using testing::HasSubstr;

class ABadDrawing : public ProgramFixture {};

TEST_F(ABadDrawing, IsNamedAndTheOthersAreStillOpened) {
    const std::string directory = folder / "folder.svg";
    std::filesystem::create_directory(directory);
    const std::vector<std::string> bad{
        write("empty.svg", ""),
        write("text.svg", "Dear reader,\nhello.\n"),
        write("cut.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\"><g><text>cut o"),
        write("cut.svgz", std::string("\x1F\x8B\x08\0\0\0\0\0\0\3\x4B", 11)),
        folder / "none.svg",
        directory};
    std::vector<std::string> arguments{"open", "--no-plugin"};
    arguments.insert(arguments.end(), bad.begin(), bad.end());
    arguments.push_back(goodDrawing());
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, 2) << result.errors;
    for (const std::string& file : bad) {
        EXPECT_THAT(result.errors, HasSubstr("error: " + file + ":"));
    }
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 6) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold")) << "the good one was opened";
}

TEST_F(ABadDrawing, IsSaidInTheJsonReportToo) {
    const std::string none = folder / "none.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--report", "json", none});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.output, HasSubstr("\"opened\": false"));
    EXPECT_THAT(result.output, HasSubstr("\"error\": \"" + none));
}

using AnUnwritablePlace = ABadDrawing;

TEST_F(AnUnwritablePlace, ToSaveToLosesNothing) {
    const std::string drawing = goodDrawing();
    const std::string target = folder / "no/such/folder.svg";
    const ProgramResult result = run({"open", "--no-plugin", "--save", target, drawing});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("error: " + target + ":"));
    EXPECT_THAT(result.output, HasSubstr("NoSuchFace-Bold"));
}

} // namespace
} // namespace host::test
