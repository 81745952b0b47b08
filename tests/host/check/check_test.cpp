// SPDX-License-Identifier: MIT
// Drawings held against a list of fonts that the test makes up, and one well-known family.
#include "host/check/check.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace host {
namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

FaceUse use(std::string family, std::size_t runs = 1, std::u32string characters = {}) {
    FaceUse result;
    result.face.family = std::move(family);
    result.face.style = "Regular";
    result.runs = runs;
    result.places = {{"", "", result.face.family}};
    result.characters = std::move(characters);
    return result;
}

std::vector<InstalledFace> installed() {
    InstalledFace face;
    face.family = "Here";
    face.style = "Regular";
    face.postScriptName = "Here-Regular";
    face.fullName = "Here Regular";
    face.file = "/fonts/here";
    return {face};
}

class ACheck : public testing::Test {
protected:
    CheckedDrawing check(std::vector<FaceUse> faces) {
        return checker_.check({"d.svg", "", std::move(faces)});
    }
    const testsupport::TemporaryFolder folder_;
    const testsupport::Variable settings_{
        "FONTCONFIG_FILE",
        folder_
            .write("fonts.conf", "<?xml version='1.0'?><fontconfig><dir>"
                                 "/usr/share/fonts/truetype/dejavu</dir><cachedir>" +
                                     (folder_ / "cache").string() + "</cachedir></fontconfig>")
            .string()};
    Checker checker_{installed};
};

TEST_F(ACheck, TellsOfEachFontOnce) {
    FaceUse embedded = use("Brought", 1, U"\u4E2D");
    embedded.face.origin = FaceOrigin::Embedded;
    const auto drawing = check({use("Here", 1, U"\u00E4"), use("Gone", 2, U"b\u4E2D"),
                                use("here", 3), use("GONE", 4, U"a"), embedded});
    ASSERT_THAT(drawing.faces, SizeIs(3));
    EXPECT_EQ(drawing.faces[0].state, FaceState::Installed);
    EXPECT_EQ(drawing.faces[0].font->file, "/fonts/here");
    EXPECT_EQ(drawing.faces[0].use.runs, 4U);
    EXPECT_THAT(drawing.faces[0].use.places, SizeIs(2));
    EXPECT_EQ(drawing.faces[0].lackingCharacters, U"");
    EXPECT_EQ(drawing.faces[1].state, FaceState::Missing);
    EXPECT_EQ(drawing.faces[1].postScriptName, "Gone-Regular");
    EXPECT_EQ(drawing.faces[1].use.runs, 6U);
    EXPECT_EQ(drawing.faces[1].use.characters, U"ab\u4E2D");
    EXPECT_EQ(drawing.faces[1].lackingCharacters, U"\u4E2D");
    EXPECT_TRUE(drawing.faces[1].drawnIn);
    EXPECT_EQ(drawing.faces[2].state, FaceState::Embedded);
    EXPECT_EQ(drawing.faces[2].lackingCharacters, U"") << "it brings its own";
    EXPECT_TRUE(drawing.missesFonts());
    EXPECT_TRUE(drawing.lacksCharacters());
}

TEST_F(ACheck, TellsWhatEachListOfFamiliesIsDrawnIn) {
    for (const char* const later : {"DejaVu Serif", "DejaVu Sans Mono"}) {
        FaceUse gone = use("Gone");
        gone.laterFamilies = {later};
        EXPECT_EQ(check({gone}).faces.at(0).drawnIn.value().family, later);
    }
}

TEST_F(ACheck, CountsOverAllDrawings) {
    EXPECT_FALSE(check({use("Here")}).missesFonts());
    check({use("Gone", 2), use("Rare", 9, U"\u4E2D")});
    check({use("gone", 3), use("Here", 1, U"\u4E2D\u4E2E")});
    check({use("Often", 5), use("Gone"), use("other", 1, U"\u4E2D"), use("more", 1, U"\u4E2D")});
    check({use("Often", 5)});
    static_cast<void>(checker_.check({"bad.svg", "bad.svg: bad", {}}));
    const CheckSummary summary = checker_.summary();
    EXPECT_EQ(summary.drawings, 6U);
    EXPECT_EQ(summary.unreadable, 1U);
    EXPECT_EQ(summary.complete, 1U);
    std::vector<std::string> missing;
    for (const auto& face : summary.missing) {
        missing.push_back(face.face.family + " " + std::to_string(face.drawings) + " " +
                          std::to_string(face.runs));
    }
    EXPECT_THAT(missing,
                ElementsAre("Gone 3 6", "Often 2 10", "Rare 1 9", "more 1 1", "other 1 1"));
    EXPECT_THAT(summary.lackingCharacters, ElementsAre(Pair(U'\u4E2D', 3), Pair(U'\u4E2E', 1)));
}

} // namespace
} // namespace host
