// SPDX-License-Identifier: MIT
// Reading one font file: names, technology, and what is refused.
#include "faces/fontfile.h"
#include "tests/support/fontmaker.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace faces;
using namespace testsupport;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

class AFontFile : public testing::Test {
protected:
    FontFileContents read(const std::string& bytes) {
        return readFontFile(folder_.write("font.ttf", bytes));
    }
    std::string problem(const std::string& bytes) {
        try {
            read(bytes);
        } catch (const UnreadableFont& error) {
            return error.what();
        }
        return "none";
    }

    TemporaryFolder folder_;
};

TEST_F(AFontFile, TellsTypographicNamesFirstAndPairsTheLegacyOnes) {
    const auto contents = read(makeFont({"Test Sans Condensed", "Bold", "TestSansCondensed-Bold",
                                         true, "Test Sans", "Condensed Bold"}));
    ASSERT_EQ(contents.faces.size(), 1U);
    EXPECT_FALSE(contents.collection);
    EXPECT_EQ(contents.faces[0].technology, Technology::OpenTypeTrueType);
    EXPECT_EQ(contents.faces[0].postScriptName, "TestSansCondensed-Bold");
    EXPECT_THAT(contents.faces[0].names, ElementsAre(Name{"Test Sans", "Condensed Bold", {}},
                                                     Name{"Test Sans Condensed", "Bold", {}}));
}

TEST_F(AFontFile, HoldsTheFacesOfACollectionEachWithItsIndex) {
    const auto contents = read(makeCollection(
        {{"Müller & Söhne", "Regular", "Mueller-Regular"}, {"Other", "Bold", "Other-Bold", true}}));
    EXPECT_TRUE(contents.collection);
    ASSERT_EQ(contents.faces.size(), 2U);
    EXPECT_THAT(contents.faces[0].names, ElementsAre(Name{"Müller & Söhne", "Regular", {}}));
    EXPECT_EQ(contents.faces[0].technology, Technology::TrueType) << "without layout tables";
    EXPECT_EQ(contents.faces[1].postScriptName, "Other-Bold");
    EXPECT_EQ(contents.faces[1].index, 1U);
    EXPECT_EQ(contents.faces[1].technology, Technology::OpenTypeTrueType);
}

TEST_F(AFontFile, TellsTheNamedInstancesOfAVariableFontAsFaces) {
    FontRecipe recipe;
    recipe.instances = {"Medium", "Semi Bold"};
    const auto contents = read(makeFont(recipe));
    ASSERT_EQ(contents.faces.size(), 3U);
    std::vector<std::string> styles;
    std::vector<std::uint32_t> instances;
    for (const Face& face : contents.faces) {
        EXPECT_EQ(face.names.front().family, "Test Sans");
        styles.push_back(face.names.front().style);
        instances.push_back(face.index >> 16U);
    }
    EXPECT_THAT(styles, testing::UnorderedElementsAre("Regular", "Medium", "Semi Bold"));
    EXPECT_THAT(instances, testing::UnorderedElementsAre(0U, 1U, 2U));
}

TEST_F(AFontFile, IsRefusedWithItsNameAndThePlaceOfTheFault) {
    const std::string font = makeFont({});
    const struct {
        std::string bytes;
        const char* expected;
    } cases[] = {
        {"", "an empty file"},
        {"%", "ends at byte 1 inside the font header"},
        {"hello, world", "not a TrueType, OpenType or Type 1 font (byte 0)"},
        {font.substr(0, 40), "ends at byte 40 inside the table list"},
        {font.substr(0, font.size() / 2), "reaches byte "},
        {makeCollection({{}, {}}).substr(0, 14), "inside the collection header"},
        {"ttcf" + std::string("\0\1\0\0\xFF\xFF\xFF\xFF", 8), "a collection of 4294967295 fonts"},
        {std::string("\x80\x01\xFF\xFF\x00\x00", 6), "a Type 1 segment reaches byte 65541"},
        {"%!PS-AdobeFont-1.0: nothing more", "FreeType finds no font in it"},
    };
    for (const auto& [bytes, expected] : cases) {
        const std::string text = problem(bytes);
        EXPECT_THAT(text, StartsWith(folder_.path().string() + "/font.ttf: "));
        EXPECT_THAT(text, HasSubstr(expected));
    }
}

TEST_F(AFontFile, CutAtAnyLengthIsEitherReadOrRefused) {
    const std::string font = makeFont({});
    std::size_t refused = 0;
    for (std::size_t length = 0; length < font.size(); length += 61) {
        refused += problem(font.substr(0, length)) != "none" ? 1 : 0;
    }
    EXPECT_GT(refused, font.size() / 61 / 2);
    EXPECT_EQ(problem(font), "none");
}

TEST_F(AFontFile, ThatIsAPipeIsRefusedWithoutWaitingForIt) {
    const std::string path = folder_.path().string() + "/pipe.ttf";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    EXPECT_THROW(static_cast<void>(readFontFile(path)), UnreadableFont);
}

TEST(AFontFileName, IsKnownByItsEnding) {
    for (const char* name : {"a.ttf", "a.OTF", "a.b.TtC", "a.otc", "a.pfb", "a.pfa", "a.t1"}) {
        EXPECT_TRUE(hasFontFileName(name)) << name;
    }
    for (const char* name : {"a.afm", "a.pfm", "ttf", "a.ttf.bak", "a.woff2", ""}) {
        EXPECT_FALSE(hasFontFileName(name)) << name;
    }
}

} // namespace
