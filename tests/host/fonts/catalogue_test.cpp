// SPDX-License-Identifier: MIT
// Keys and look-up, over a list of fonts that the test makes up.
#include "host/fonts/catalogue.h"

#include "faces/stylewords.h"

#include <gtest/gtest.h>

#include <unordered_set>

namespace host {
namespace {

InstalledFace face(std::string family, std::string style, std::string postScriptName,
                   int weight = 400, Slant slant = Slant::Upright, double stretch = 100) {
    InstalledFace result;
    result.family = std::move(family);
    result.style = std::move(style);
    result.postScriptName = std::move(postScriptName);
    result.fullName = result.family + " " + result.style;
    result.file = "/fonts/" + result.postScriptName;
    result.weight = result.weightTo = weight;
    result.slant = slant;
    result.stretch = result.stretchTo = stretch;
    return result;
}

std::vector<InstalledFace> someFonts() {
    std::vector<InstalledFace> fonts{
        face("Oswald", "Regular", "Oswald-Regular"),
        face("Oswald", "Bold", "Oswald-Bold", 700),
        face("DejaVu Sans", "Book", "DejaVuSans", 380),
        face("DejaVu Sans", "Oblique", "DejaVuSans-Oblique", 380, Slant::Oblique),
        face("DejaVu Sans", "Condensed", "DejaVuSansCondensed", 400, Slant::Upright, 87.5),
        // Its numbers say medium, its words say regular.
        face("Roman", "Roman", "C059-Roman", 500),
        face("Swash", "Extra Fancy", "Swash-ExtraFancy"),
        face("Old Thing", "Regular", "OldThing-T1"),
        face("Old Thing", "Regular", "OldThing"),
    };
    fonts[4].aliases = {{"DejaVu Sans Condensed", "Book"}};
    fonts[7].technology = FontTechnology::PostScript;
    fonts[8].openType = true;
    InstalledFace variable = face("Flex", "", "", 100);
    variable.variable = true;
    variable.weightTo = 900;
    variable.file = "/fonts/flex";
    fonts.push_back(variable);
    for (const auto& [style, weight, index] :
         {std::tuple{"Light", 300, 1}, std::tuple{"Regular", 400, 2}, std::tuple{"Bold", 700, 3}}) {
        InstalledFace instance = face("Flex", style, std::string("Flex-") + style, weight);
        instance.file = "/fonts/flex";
        instance.index = index << 16;
        fonts.push_back(instance);
    }
    return fonts;
}

Face named(std::string family, int weight = 400, Slant slant = Slant::Upright,
           double stretch = 100) {
    Face result;
    result.family = std::move(family);
    result.weight = weight;
    result.slant = slant;
    result.stretch = stretch;
    result.style = faces::styleText(result.look());
    return result;
}

class ACatalogue : public testing::Test {
protected:
    std::string resolved(const Face& wanted) {
        const FontEntry* entry = catalogue_.entry(catalogue_.resolve(wanted));
        return (entry->present ? "" : "missing ") + entry->face.postScriptName;
    }
    std::vector<InstalledFace> fonts_ = someFonts();
    Catalogue catalogue_{[this] { return fonts_; }};
};

TEST_F(ACatalogue, ResolvesByFamilyAndStyleElseByName) {
    struct Case {
        Face wanted;
        const char* name;
    };
    Face withName = named("Unknown");
    withName.postScriptName = "Oswald-Bold";
    Face namedMissing = named("Oswald-Light", 700);
    namedMissing.postScriptName = "Oswald-Light";
    Face byWords = named("Swash");
    byWords.style = "Extra Fancy";
    for (const Case& c : {
             Case{named("Oswald"), "Oswald-Regular"},
             Case{named("oswald", 700), "Oswald-Bold"},
             Case{named("Oswald", 300), "missing Oswald-Light"},
             Case{named("Oswald", 700, Slant::Italic), "missing Oswald-BoldItalic"},
             Case{named("DejaVuSans"), "DejaVuSans"},
             Case{named("DEJAVU SANS", 400, Slant::Italic), "DejaVuSans-Oblique"},
             Case{named("DejaVu Sans", 400, Slant::Upright, 87.5), "DejaVuSansCondensed"},
             Case{named("DejaVu Sans Condensed"), "DejaVuSansCondensed"},
             Case{named("DejaVu Sans", 700), "missing DejaVuSans-Bold"},
             Case{named("Roman"), "C059-Roman"},
             Case{named("Roman", 500), "C059-Roman"},
             Case{byWords, "Swash-ExtraFancy"},
             Case{named("Old Thing"), "OldThing"},
             Case{named("Oswald-Bold"), "Oswald-Bold"},
             Case{named("Oswald-Bold", 300), "Oswald-Bold"},
             Case{named("OldThing-T1", 700, Slant::Italic), "OldThing-T1"},
             Case{named("DejaVuSans", 700), "missing DejaVuSans-Bold"},
             Case{withName, "Oswald-Bold"},
             Case{namedMissing, "missing Oswald-Light"},
             Case{named("Oswald Bold"), "Oswald-Bold"},
             Case{named("Oswald Bold", 700), "missing OswaldBold-Bold"},
             Case{named("Flex", 700), "Flex-Bold"},
             Case{named("Flex", 650), "Flex-Bold"},
             Case{named("Flex", 950), "missing Flex-Black"},
             Case{named("Nowhere Sans", 700, Slant::Italic), "missing NowhereSans-BoldItalic"},
             Case{named("M\xC3\xBCller & S\xC3\xB6hne"),
                  "missing M\xC3\xBCller&S\xC3\xB6hne-Regular"},
         }) {
        EXPECT_EQ(resolved(c.wanted), c.name) << c.wanted.family << " " << c.wanted.style;
    }
}

TEST_F(ACatalogue, NeverMissesGenericAndEmbeddedFaces) {
    for (const FaceOrigin origin : {FaceOrigin::Generic, FaceOrigin::Embedded}) {
        Face wanted = named("serif", 700);
        wanted.origin = origin;
        const FontKey key = catalogue_.resolve(wanted);
        EXPECT_TRUE(catalogue_.entry(key)->present);
        EXPECT_EQ(catalogue_.entry(key)->face.family, "serif");
        fonts_.clear();
        catalogue_.refresh();
        EXPECT_TRUE(catalogue_.entry(key)->present);
    }
}

TEST_F(ACatalogue, ListsEveryFaceOnceInAStableOrder) {
    fonts_.push_back(fonts_.front());
    std::reverse(fonts_.begin(), fonts_.end());
    const std::vector<FontKey> before(catalogue_.faces().begin(), catalogue_.faces().end());
    EXPECT_FALSE(catalogue_.refresh());
    EXPECT_EQ(before, std::vector<FontKey>(catalogue_.faces().begin(), catalogue_.faces().end()));
    EXPECT_EQ(before.size(), 12U); // the variable font stands behind its instances
    std::string names;
    for (const FontKey key : before) {
        names += catalogue_.entry(key)->face.postScriptName + " ";
    }
    EXPECT_EQ(names, "DejaVuSans DejaVuSansCondensed DejaVuSans-Oblique Flex-Bold Flex-Light "
                     "Flex-Regular OldThing OldThing-T1 Oswald-Bold Oswald-Regular C059-Roman "
                     "Swash-ExtraFancy ");
}

TEST_F(ACatalogue, KeepsItsKeysWhenFontsComeAndGo) {
    const FontKey regular = catalogue_.resolve(named("Oswald"));
    const FontKey missing = catalogue_.resolve(named("New One"));
    EXPECT_EQ(catalogue_.resolve(named("New One")), missing);

    fonts_.push_back(face("New One", "Regular", "NewOne-Regular"));
    EXPECT_TRUE(catalogue_.refresh());
    EXPECT_EQ(catalogue_.resolve(named("Oswald")), regular);
    const FontKey found = catalogue_.resolve(named("New One"));
    EXPECT_NE(found, missing);
    EXPECT_TRUE(catalogue_.entry(found)->present);
    EXPECT_FALSE(catalogue_.entry(missing)->present);
    EXPECT_EQ(catalogue_.findByName("NewOne-Regular"), found);

    fonts_.pop_back();
    EXPECT_TRUE(catalogue_.refresh());
    EXPECT_FALSE(catalogue_.entry(found)->present);
    EXPECT_EQ(catalogue_.entry(found)->face.family, "New One");
    EXPECT_EQ(catalogue_.resolve(named("New One")), missing);
    EXPECT_EQ(catalogue_.findByName("NewOne-Regular"), noFont);

    fonts_.push_back(face("New One", "Regular", "NewOne-Regular"));
    EXPECT_TRUE(catalogue_.refresh());
    EXPECT_EQ(catalogue_.resolve(named("New One")), found);
}

TEST_F(ACatalogue, FindsFacesByTheirNames) {
    EXPECT_EQ(catalogue_.findByName("Oswald-Bold"), catalogue_.findByName("oswald bold"));
    EXPECT_NE(catalogue_.findByName("Oswald-Bold"), noFont);
    EXPECT_EQ(catalogue_.findByName("oswald-bold"), noFont);
    EXPECT_EQ(catalogue_.findByName(""), noFont);
    EXPECT_EQ(catalogue_.entry(noFont), nullptr);
    EXPECT_EQ(catalogue_.entry(100000), nullptr);
}

/// What is left of a face in a drawing.
Face asRead(const Face& written) {
    Face read = named(written.family, written.weight, written.slant, written.stretch);
    read.postScriptName = read.family.find('-') == std::string::npos ? "" : read.family;
    return read;
}

TEST_F(ACatalogue, WritesFontsSoThatTheyAreFoundAgain) {
    const auto add = [this](const char* style, int weight, const char* legacyFamily) {
        fonts_.push_back(face("Close", style, std::string("Close-") + style, weight));
        if (legacyFamily != nullptr) {
            fonts_.back().aliases = {{legacyFamily, "Regular"}};
        }
    };
    add("Thin", 250, nullptr);
    add("Light", 300, nullptr);
    add("08Regular", 400, nullptr);
    add("12Regular", 400, "Close 12");
    add("Medium", 500, nullptr);
    add("Retina", 450, nullptr);
    catalogue_.refresh();
    for (const FontKey key : catalogue_.faces()) {
        const FontEntry& entry = *catalogue_.entry(key);
        const auto written = catalogue_.asWritten(key);
        ASSERT_TRUE(written) << entry.face.fullName;
        EXPECT_EQ(catalogue_.resolve(asRead(*written)), key) << entry.face.fullName;
    }
}

TEST_F(ACatalogue, WritesWhatMostProgramsReadWhereThatIsEnough) {
    const struct {
        const char* postScriptName;
        const char* family;
        int weight;
    } cases[] = {{"DejaVuSans", "DejaVu Sans", 400}, // whose weight is 380
                 {"Oswald-Bold", "Oswald", 700},
                 {"Swash-ExtraFancy", "Swash", 400},
                 {"OldThing-T1", "OldThing-T1", 400}}; // its names are also another font's
    for (const auto& [postScriptName, family, weight] : cases) {
        const auto written = catalogue_.asWritten(catalogue_.findByName(postScriptName));
        ASSERT_TRUE(written) << postScriptName;
        EXPECT_EQ(written->family, family);
        EXPECT_EQ(written->weight, weight) << postScriptName;
    }
    const FontKey missing = catalogue_.resolve(named("Nowhere", 250));
    EXPECT_EQ(catalogue_.asWritten(missing)->weight, 250);
    EXPECT_FALSE(catalogue_.asWritten(noFont));
}

} // namespace
} // namespace host
