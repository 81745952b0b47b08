// SPDX-License-Identifier: MIT
// What is kept of a drawing, and many drawings read at a time.
#include "host/check/drawingfaces.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace host {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string drawing(const std::string& content) {
    return R"(<svg xmlns="http://www.w3.org/2000/svg"
        xmlns:i="http://www.inkscape.org/namespaces/inkscape">)" +
           content + "</svg>";
}

class ADrawingsFaces : public testing::Test {
protected:
    std::vector<FaceUse> facesOf(const std::string& content) const {
        DrawingFaces read = readFaces(folder_.write("d.svg", drawing(content)), {});
        EXPECT_EQ(read.error, "");
        return std::move(read.faces);
    }
    const testsupport::TemporaryFolder folder_;
};

TEST_F(ADrawingsFaces, AreThoseOfVisibleTextWithItsPlaces) {
    const auto faces = facesOf(R"(
        <g i:groupmode="layer" i:label="Sky"><text id="t1" font-family="Lato">one
            <tspan font-weight="bold">two</tspan> three</text></g>
        <g i:groupmode="layer" i:label="Sea"><text id="t2" font-family="Lato">four</text>
            <text font-family="Hidden" display="none">five</text></g>
        <text font-family="Lato">six</text>)");
    ASSERT_THAT(faces, SizeIs(2));
    EXPECT_EQ(faces[0].face.family + faces[0].face.style, "LatoRegular");
    EXPECT_EQ(faces[1].face.family + faces[1].face.style, "LatoBold");
    EXPECT_EQ(faces[0].runs, 4U);
    std::vector<std::string> places;
    for (const TextPlace& place : faces[0].places) {
        places.push_back(place.layer + "/" + place.element + "/" + place.words);
    }
    EXPECT_THAT(places, ElementsAre("Sky/t1/one", "Sky/t1/three", "Sea/t2/four", "//six"));
}

TEST_F(ADrawingsFaces, HaveTheFirstPlacesOfMany) {
    std::string texts;
    for (int i = 0; i < 30; ++i) {
        texts += "<text font-family='A'>t" + std::to_string(i) + "</text>";
    }
    const auto faces = facesOf(texts);
    ASSERT_THAT(faces, SizeIs(1));
    EXPECT_EQ(faces[0].runs, 30U);
    ASSERT_THAT(faces[0].places, SizeIs(FaceUse::mostPlaces));
    EXPECT_EQ(faces[0].places.back().words, "t19");
}

TEST_F(ADrawingsFaces, HaveTheFamiliesBehindThemWhereTheyComeFirst) {
    const auto faces = facesOf(R"(<text font-family="Lato, 'Open  Sans', serif">a</text>
        <text font-family="Lato, Other">b</text><text font-family="Alone">c</text>
        <text font-family="Lato, Other" font-weight="bold">d</text>)");
    ASSERT_THAT(faces, SizeIs(3));
    EXPECT_THAT(faces[0].laterFamilies, ElementsAre("Open  Sans", "serif"));
    EXPECT_THAT(faces[1].laterFamilies, IsEmpty());
    EXPECT_THAT(faces[2].laterFamilies, ElementsAre("Other")) << "where the bold face comes first";
}

TEST_F(ADrawingsFaces, HaveEachCharacterBeyondAsciiOnceThatLeavesAMark) {
    const struct {
        const char* text;
        std::u32string characters;
    } cases[] = {
        {"Plain text", U""},
        {"\u00FC\u00E4\u00FC\U0001F600", U"\u00E4\u00FC\U0001F600"},
        {"\u00A0\u200B\u200D\u2003\uFE0F", U""}, // blanks, joiners, a variation selector
        {"e\u0301", U""},                        // a mark alone
    };
    for (const auto& [text, characters] : cases) {
        const auto faces = facesOf(std::string("<text>x") + text + "</text>");
        ASSERT_THAT(faces, SizeIs(1));
        EXPECT_EQ(faces[0].characters, characters) << text;
    }
}

TEST_F(ADrawingsFaces, AreNoneWhereItCannotBeRead) {
    const std::string broken = folder_.write("broken.svg", drawing("<text>"));
    EXPECT_THAT(readFaces(broken, {}).error, HasSubstr(broken + ":"));
    EXPECT_THAT(readFaces(folder_ / "none.svg", {}).error, HasSubstr("none.svg: "));
}

TEST_F(ADrawingsFaces, AreReadManyAtATimeAndGivenInOrder) {
    std::vector<std::filesystem::path> files;
    for (int i = 0; i < 500; ++i) {
        // The earlier a file, the longer it takes.
        std::string texts;
        for (int text = 0; text < 500 - i; ++text) {
            texts += "<text>x</text>";
        }
        files.push_back(folder_.write(std::to_string(i) + ".svg", drawing(texts)));
    }
    for (const unsigned threads : {7U, 0U, 1U}) {
        std::vector<std::string> taken;
        readAllFaces(files, {}, threads, [&](const DrawingFaces& drawing) {
            taken.push_back(drawing.file + drawing.error);
            EXPECT_EQ(drawing.faces.at(0).runs, 500 - (taken.size() - 1));
        });
        EXPECT_TRUE(std::equal(taken.begin(), taken.end(), files.begin(), files.end()));
    }
    EXPECT_THROW(
        readAllFaces(files, {}, 3, [](const DrawingFaces&) { throw std::logic_error(""); }),
        std::logic_error);
    readAllFaces({}, {}, 3, [](const DrawingFaces&) { ADD_FAILURE(); });
}

} // namespace
} // namespace host
