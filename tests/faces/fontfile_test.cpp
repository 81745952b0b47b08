// SPDX-License-Identifier: MIT
// Reading one font file: names, technology, and what is refused.
#include "faces/fontfaults.h"
#include "faces/fontfile.h"
#include "faces/namedecoder.h"
#include "tests/support/fontmaker.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
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

    static std::vector<std::string> pairs(const Face& face) {
        std::vector<std::string> texts;
        for (const Name& name : face.names) {
            texts.push_back(name.family + "/" + name.style);
        }
        return texts;
    }

    TemporaryFolder folder_;
};

// Records of Microsoft's platform in two languages.
RawName english(unsigned id, const std::string& text) {
    return {.id = id, .bytes = wide(text)};
}
RawName korean(unsigned id, const std::string& text) {
    return {.language = 0x412, .id = id, .bytes = wide(text)};
}

TEST_F(AFontFile, PairsFamiliesWithTheStylesOfTheirLanguageAndKind) {
    const struct {
        const char* what;
        std::vector<RawName> names;
        std::vector<std::string> expected;
    } cases[] = {
        {"the Korean family has more records than the Korean styles",
         {korean(1, "나눔고딕 ExtraBold"), korean(16, "나눔고딕"), english(1, "Nanum ExtraBold"),
          english(2, "Regular"), english(16, "Nanum"), english(17, "ExtraBold")},
         {"Nanum/ExtraBold", "나눔고딕/ExtraBold", "Nanum ExtraBold/Regular",
          "나눔고딕 ExtraBold/Regular"}},
        {"styles in two languages",
         {english(1, "Sans"), english(2, "Bold"), korean(1, "고딕"), korean(2, "볼드")},
         {"Sans/Bold", "고딕/볼드"}},
        {"the style of all weights, but their family told once",
         {english(1, "Slab"), english(2, "Regular"), english(17, "Thin")},
         {"Slab/Thin"}},
        {"a legacy style that says the same",
         {english(1, "Slab"), english(2, "Italic"), english(17, "Oblique")},
         {"Slab/Oblique", "Slab/Italic"}},
        {"weight, width and slant, without a style of their own",
         {english(1, "Text Light"), english(2, "Regular"), english(16, "Text"),
          english(17, "Light"), english(21, "Text Caption")},
         {"Text Caption/Light", "Text/Light", "Text Light/Regular"}},
        {"another platform's family",
         {english(1, "One"), english(2, "Bold"), {1, 0, 0, 1, "Two"}, {1, 0, 0, 2, "Heavy"}},
         {"One/Bold", "Two/Heavy"}},
    };
    for (const auto& [what, names, expected] : cases) {
        EXPECT_EQ(pairs(read(makeFont({.names = names})).faces.at(0)), expected) << what;
    }
    const auto nameless = read(makeFont({.names = {english(0, "Copyright")}}));
    EXPECT_EQ(nameless.faces.at(0).names.at(0).family, "font") << "by its file";
}

TEST_F(AFontFile, KeepsNamesAsTheyStandInIt) {
    const Face face =
        read(makeFont({.names = {english(1, "A  B "), english(2, "Regular"), english(4, "A B"),
                                 korean(4, "가"), english(4, "A B"), english(5, "Version 2.5; x"),
                                 english(6, "A B-Regular"), english(13, "Free")}}))
            .faces.at(0);
    EXPECT_EQ(face.names.at(0), (Name{"A  B", "Regular", "en", NameKind::Legacy}));
    EXPECT_EQ(face.postScriptName, "A B-Regular");
    EXPECT_THAT(face.fullNames, ElementsAre("A B", "가"));
    EXPECT_EQ(face.version, "2.5; x");
    EXPECT_EQ(face.licence, "Free");
}

TEST(ANameRecord, IsDecodedByItsPlatformAndEncoding) {
    const struct {
        unsigned platform;
        unsigned encoding;
        std::string bytes;
        std::optional<std::string> expected;
    } cases[] = {
        {3, 1, wide("Größe 🂡"), "Größe 🂡"},
        {0, 3, wide("x"), "x"},
        // Half a pair, half a letter.
        {3, 10, std::string("\0A\xD8\0\0B\0", 7),
         "A\xEF\xBF\xBD"
         "B"},
        {3, 1, std::string("\0A\0\0\0B", 6), "A"},
        {1, 0, "Caf\x8E \xDB\xC6", "Café €∆"},
        {1, 0, "\x83\x82\x83\x67\x83\x84", "モトヤ"}, // Shift JIS, whatever it says
        {1, 1, "\x83\x82", "モ"},
        {1, 7, "\xE4\xE0", "да"},
        {1, 4, "\xC4", std::nullopt}, // Arabic, which iconv does not know
        {3, 3, std::string("\0A\xC4\xE3", 4), "A你"},
        {3, 4, "\xA7\x41", "你"},
        {2, 2, "\xE9", "é"},
        {3, 1, "", ""},
    };
    NameDecoder decoder;
    for (const auto& [platform, encoding, bytes, expected] : cases) {
        EXPECT_EQ(decoder.decode(static_cast<Platform>(platform), encoding, bytes), expected)
            << platform << " " << encoding << " " << testing::PrintToString(bytes);
    }
}

TEST_F(AFontFile, TellsTypographicNamesFirstAndPairsTheLegacyOnes) {
    const auto contents = read(makeFont({"Test Sans Condensed", "Bold", "TestSansCondensed-Bold",
                                         true, "Test Sans", "Condensed Bold"}));
    ASSERT_EQ(contents.faces.size(), 1U);
    EXPECT_FALSE(contents.collection);
    EXPECT_EQ(contents.faces[0].technology, Technology::OpenTypeTrueType);
    EXPECT_EQ(contents.faces[0].postScriptName, "TestSansCondensed-Bold");
    EXPECT_THAT(pairs(contents.faces[0]),
                ElementsAre("Test Sans/Condensed Bold", "Test Sans Condensed/Bold"));
}

TEST_F(AFontFile, HoldsTheFacesOfACollectionEachWithItsIndex) {
    const auto contents = read(makeCollection(
        {{"Müller & Söhne", "Regular", "Mueller-Regular"}, {"Other", "Bold", "Other-Bold", true}}));
    EXPECT_TRUE(contents.collection);
    ASSERT_EQ(contents.faces.size(), 2U);
    EXPECT_THAT(pairs(contents.faces[0]), ElementsAre("Müller & Söhne/Regular"));
    EXPECT_EQ(contents.faces[0].technology, Technology::TrueType) << "without layout tables";
    EXPECT_EQ(contents.faces[1].postScriptName, "Other-Bold");
    EXPECT_EQ(contents.faces[1].index, 1U);
    EXPECT_EQ(contents.faces[1].technology, Technology::OpenTypeTrueType);
}

TEST_F(AFontFile, TellsTheNamedInstancesOfAVariableFontAsFaces) {
    FontRecipe recipe;
    recipe.instances = {"Medium", "Semi Bold"};
    const auto contents = read(makeFont(recipe));
    const struct {
        std::uint32_t index;
        const char* pair;
        const char* postScriptName;
        double weight;
    } expected[] = {{0, "Test Sans/Regular", "TestSans-Regular", 400},
                    {0x10000, "Test Sans/Medium", "TestSans-Medium", 500},
                    {0x20000, "Test Sans/Semi Bold", "TestSans-SemiBold", 600}};
    ASSERT_EQ(contents.faces.size(), std::size(expected));
    for (std::size_t i = 0; i < contents.faces.size(); ++i) {
        const Face& face = contents.faces[i];
        EXPECT_EQ(face.index, expected[i].index);
        EXPECT_THAT(pairs(face), ElementsAre(expected[i].pair));
        EXPECT_EQ(face.postScriptName, expected[i].postScriptName);
        EXPECT_EQ(face.style.weight, expected[i].weight);
        EXPECT_THAT(face.axes, ElementsAre(Axis{"wght", "Regular", 100, 400, 900, false}));
    }
    const double width = contents.faces[1].measures.value().letterWidth;
    EXPECT_GT(contents.faces[2].measures.value().letterWidth, width);

    recipe.slanting = true; // which makes no letter wider
    const auto slanting = read(makeFont(recipe)).faces;
    ASSERT_EQ(slanting.size(), 3U);
    EXPECT_THAT(slanting[2].position, ElementsAre(testing::Pair("slnt", -2)));
    EXPECT_EQ(slanting[2].style.slant, Slant::Oblique);
    EXPECT_EQ(slanting[2].measures, slanting[0].measures);
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
        const auto fault = faultIn(text); // as who translates it finds it
        ASSERT_TRUE(fault) << text;
        EXPECT_EQ(fault->about, folder_.path().string() + "/font.ttf");
        std::string again = fault->text;
        for (std::size_t i = 0; i < fault->values.size(); ++i) {
            again.replace(again.find("%" + std::to_string(i + 1)), 2, fault->values[i]);
        }
        EXPECT_EQ(fault->about + ": " + again, text);
    }
    EXPECT_FALSE(faultIn("a: an empty file: b"));
    EXPECT_FALSE(faultIn("an empty file"));
    const auto named = faultIn("/a: an empty file/b: an empty file");
    EXPECT_EQ(named ? named->about : "", "/a: an empty file/b");
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
