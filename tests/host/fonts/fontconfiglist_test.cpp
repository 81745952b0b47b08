// SPDX-License-Identifier: MIT
// The desktop's fonts through fontconfig, in a small font world of the test's own: its fonts are
// hard copies of what the desktop has of one well-known family, and some made for a test.
#include "faces/stylewords.h"
#include "host/fonts/catalogue.h"
#include "tests/faces/matching_cases.h"
#include "tests/support/fontmaker.h"
#include "tests/support/temporaryfolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace host {
namespace {

/// Where the desktop keeps a face; asked before the private world begins.
std::string desktopFile(const char* postScriptName) {
    Catalogue desktop;
    const FontEntry* entry = desktop.entry(desktop.findByName(postScriptName));
    return entry != nullptr ? entry->face.file : "";
}

class APrivateFontWorld : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_FALSE(regular_.empty() || bold_.empty()) << "package fonts-dejavu-core is needed";
        std::filesystem::create_directories(folder_ / "fonts/set");
        settings_.emplace("FONTCONFIG_FILE",
                          folder_.write("fonts.conf", "<?xml version='1.0'?><fontconfig><dir>" +
                                                          (folder_ / "fonts").string() +
                                                          "</dir><cachedir>" +
                                                          (folder_ / "cache").string() +
                                                          "</cachedir></fontconfig>"));
    }
    /// As a font manager does it: staged elsewhere, then renamed into place.
    void activate(const std::string& file, const char* name) {
        std::filesystem::copy_file(file, folder_ / name);
        std::filesystem::rename(folder_ / name, folder_ / "fonts/set" / name);
        touch();
    }
    void deactivate(const char* name) {
        std::filesystem::remove(folder_ / "fonts/set" / name);
        touch();
    }
    // As it does also: the kernel's own times are too coarse to tell quick changes apart.
    void touch() {
        std::filesystem::last_write_time(folder_ / "fonts/set",
                                         std::filesystem::file_time_type::clock::now());
    }
    static Face dejaVu(int weight) {
        Face face;
        face.family = "DejaVu Sans";
        face.weight = weight;
        face.style = faces::styleText(face.look());
        return face;
    }

    const std::string regular_ = desktopFile("DejaVuSans");
    const std::string bold_ = desktopFile("DejaVuSans-Bold");
    const testsupport::TemporaryFolder folder_;
    std::optional<testsupport::Variable> settings_;
};

TEST_F(APrivateFontWorld, IsEmptyAtFirstAndNoticesEveryActivation) {
    Catalogue catalogue;
    EXPECT_TRUE(catalogue.faces().empty());
    const FontKey missing = catalogue.resolve(dejaVu(400));
    EXPECT_FALSE(catalogue.entry(missing)->present);
    EXPECT_EQ(catalogue.entry(missing)->face.postScriptName, "DejaVuSans-Regular");
    EXPECT_FALSE(catalogue.refresh());

    // Both within the second in which the last look was taken.
    activate(regular_, "a.ttf");
    EXPECT_TRUE(catalogue.refresh());
    const FontKey regular = catalogue.resolve(dejaVu(400));
    activate(bold_, "b.ttf");
    EXPECT_TRUE(catalogue.refresh());
    EXPECT_EQ(catalogue.resolve(dejaVu(400)), regular);
    ASSERT_EQ(catalogue.faces().size(), 2U);

    const InstalledFace& face = catalogue.entry(regular)->face;
    EXPECT_EQ(face.postScriptName, "DejaVuSans");
    EXPECT_EQ(face.family, "DejaVu Sans");
    EXPECT_EQ(face.style, "Book");
    EXPECT_EQ(face.fullName, "DejaVu Sans");
    EXPECT_EQ(face.technology, FontTechnology::TrueType);
    EXPECT_TRUE(face.openType);
    EXPECT_EQ(face.weight, 400);
    EXPECT_EQ(face.file, (folder_ / "fonts/set/a.ttf").string());

    deactivate("a.ttf");
    EXPECT_TRUE(catalogue.refresh());
    EXPECT_FALSE(catalogue.entry(regular)->present);
    EXPECT_EQ(catalogue.faces().size(), 1U);
}

TEST_F(APrivateFontWorld, PassesOverFilesThatAreNoFonts) {
    folder_.write("fonts/set/bad.ttf", "not a font");
    activate(regular_, "a.ttf");
    std::filesystem::resize_file(folder_ / "fonts/set/a.ttf", 5000);
    activate(bold_, "b.ttf");
    Catalogue catalogue;
    ASSERT_EQ(catalogue.faces().size(), 1U);
    EXPECT_EQ(catalogue.entry(catalogue.faces()[0])->face.postScriptName, "DejaVuSans-Bold");
}

TEST_F(APrivateFontWorld, TellsTheInstancesOfVariableFontsApart) {
    testsupport::FontRecipe recipe;
    recipe.family = recipe.typographicFamily = recipe.postScriptName = "Quay";
    recipe.style.clear(); // the full name is that of the family, with either style
    recipe.typographicStyle = "Regular";
    recipe.instances = {"Medium", "Semi Bold"};
    folder_.write("fonts/set/upright.ttf", testsupport::makeFont(recipe));
    recipe.typographicStyle = "Italic";
    recipe.instances = {"Medium Italic"};
    folder_.write("fonts/set/italic.ttf", testsupport::makeFont(recipe));
    Catalogue catalogue;
    std::vector<std::string> names;
    for (const FontKey key : catalogue.faces()) {
        const FontEntry& entry = *catalogue.entry(key);
        names.push_back(entry.face.fullName);
        EXPECT_EQ(catalogue.findByName(entry.face.fullName), key) << entry.face.fullName;
        EXPECT_EQ(catalogue.resolve(catalogue.asWritten(key).value()), key) << entry.face.fullName;
    }
    EXPECT_THAT(names, testing::ElementsAre("Quay Italic", "Quay Medium", "Quay Medium Italic",
                                            "Quay", "Quay Semi Bold"));
}

TEST_F(APrivateFontWorld, PairsStylesWithTheFamiliesOfTheirLanguage) {
    testsupport::FontRecipe recipe;
    recipe.family = "Quay Heavy"; // the typographic style has no Korean family beside it
    recipe.typographicFamily = "Quay";
    recipe.typographicStyle = "Heavy";
    recipe.translatedFamilies = {{0x412, "\xEB\xB6\x80\xEB\x91\x90"}};
    folder_.write("fonts/set/a.ttf", testsupport::makeFont(recipe));
    const std::vector<InstalledFace> faces = listInstalledFaces();
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_EQ(faces[0].family + "/" + faces[0].style, "Quay/Heavy");
    EXPECT_THAT(faces[0].aliases,
                testing::ElementsAre(InstalledFace::Alias{"Quay Heavy", "Regular"},
                                     InstalledFace::Alias{"\xEB\xB6\x80\xEB\x91\x90", "Heavy"}));
}

TEST_F(APrivateFontWorld, HasTheFacesThatTheTableOfMatchingSays) {
    for (const facestest::MatchingCase& c : facestest::matchingCases()) {
        std::filesystem::remove_all(folder_ / "fonts/set");
        for (const facestest::HeldFace& held : c.held) {
            folder_.write("fonts/set/" + held.postScriptName + ".ttf",
                          testsupport::makeFont(recipeOf(held)));
        }
        Face wanted;
        wanted.postScriptName = c.wanted.postScriptName;
        wanted.family = c.wanted.family.empty() ? c.wanted.postScriptName : c.wanted.family;
        wanted.style = c.wanted.style;
        const faces::Style look = faces::readStyleWords(c.wanted.style).style();
        wanted.weight = static_cast<int>(look.weight);
        wanted.slant = look.slant;
        wanted.stretch = look.width;
        Catalogue catalogue;
        ASSERT_EQ(catalogue.faces().size(), c.held.size()) << c.what;
        const FontEntry& entry = *catalogue.entry(catalogue.resolve(wanted));
        const std::filesystem::path file = entry.face.file;
        EXPECT_EQ(entry.present ? file.stem() : "", c.exact) << c.what;
    }
}

} // namespace
} // namespace host
