// SPDX-License-Identifier: MIT
// Which files of folders and lists are drawings.
#include "host/check/finddrawings.h"
#include "host/documents/svg/filekind.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <sys/stat.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TheDrawingsOfAFolder, AreFoundByNameAndContentAtAnyDepthInOrder) {
    const testsupport::TemporaryFolder folder;
    for (const char* const name :
         {"b.svg", "a.SVG", "z.svgz", "y.svg.gz", "sub/deep/c.svg", "sub/b.svg", "svg.txt",
          "a.svg.bak", "x.gz", "w/1.svg", "v/2.svg", "u/3.svg", "t/4.svg", "r/5.svg"}) {
        folder.write(name, "nothing");
    }
    folder.write("named-otherwise", "<?xml version='1.0'?>\n<svg xmlns='x'>");
    folder.write("page.html", "<html><svg></svg></html>");
    std::filesystem::create_directory_symlink(folder.path(), folder / "sub/loop");
    std::filesystem::create_symlink(folder / "b.svg", folder / "link.svg");
    ASSERT_EQ(::mkfifo((folder / "pipe.svg").c_str(), 0600), 0);
    std::vector<std::string> problems;
    const auto found =
        findDrawings({folder / "x.gz", folder.path(), "-", folder / "not there"},
                     [&](const std::string& problem) { problems.push_back(problem); });
    std::vector<std::string> names;
    for (const auto& path : found) {
        names.push_back(path.lexically_relative(folder.path()).string());
    }
    EXPECT_THAT(names, ElementsAre("x.gz", "a.SVG", "b.svg", "link.svg", "named-otherwise",
                                   "y.svg.gz", "z.svgz", "r/5.svg", "sub/b.svg", "sub/deep/c.svg",
                                   "t/4.svg", "u/3.svg", "v/2.svg", "w/1.svg", "", "not there"));
    EXPECT_THAT(problems, IsEmpty());
}

TEST(TheBeginningOfADrawing, IsItsFirstElement) {
    const struct {
        const char* begin;
        bool drawing;
    } cases[] = {
        {"<svg>", true},
        {"\xEF\xBB\xBF \n<svg xmlns='a'>", true},
        {"<s:svg\n", true},
        {"<?xml?><!-- <html> --><!DOCTYPE svg [ <!ENTITY a '<b>'> ]><svg/>", false}, // too odd
        {"<?xml?><!-- <html> --><!DOCTYPE svg [ <!ENTITY a 'b'> ]><svg/>", true},
        {"<!-- a > b --><svg>", true},
        {"<svgs>", false},
        {"<svg", false}, // may go on
        {"<html><svg>", false},
        {"<!-- <svg> ", false},
        {"svg", false},
        {"", false},
        {"<", false},
        {"<!", false},
    };
    for (const auto& [begin, drawing] : cases) {
        EXPECT_EQ(svg::looksLikeSvg(begin), drawing) << begin;
    }
}

TEST(AListOfPaths, HasOneALineOrNullCharactersBetween) {
    std::istringstream lines("a b.svg\n\nc.svg");
    EXPECT_THAT(readPathList(lines), ElementsAre("a b.svg", "c.svg"));
    std::istringstream nulls(std::string("a\nb.svg\0c.svg\0", 13));
    EXPECT_THAT(readPathList(nulls), ElementsAre("a\nb.svg", "c.svg"));
}

} // namespace
} // namespace host
