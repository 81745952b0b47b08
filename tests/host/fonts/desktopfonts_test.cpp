// SPDX-License-Identifier: MIT
// Substitutes and characters, with the faces of one well-known family.
#include "host/fonts/desktopfonts.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace host {
namespace {

class TheDesktop : public testing::Test {
protected:
    static Face lacking(int weight) {
        Face face;
        face.family = "Nowhere";
        face.weight = weight;
        return face;
    }

    const std::string fonts_ = "/usr/share/fonts/truetype/dejavu";
    const testsupport::TemporaryFolder folder_;
    const testsupport::Variable settings_{
        "FONTCONFIG_FILE",
        folder_
            .write("fonts.conf", "<?xml version='1.0'?><fontconfig><dir>" + fonts_ +
                                     "</dir><match><edit name='family' mode='append_last'>"
                                     "<string>DejaVu Serif</string></edit></match><cachedir>" +
                                     (folder_ / "cache").string() + "</cachedir></fontconfig>")
            .string()};
    const DesktopFonts desktop_;
};

TEST_F(TheDesktop, ShowsLackingFacesInOnesOfTheirStyleAndCharacters) {
    const struct {
        int weight;
        const char* text;
        const char* name;
    } cases[] = {{400, "Harbour", "DejaVu Serif"},
                 {700, "Harbour", "DejaVu Serif Bold"},
                 {400, "\u0645\u0631\u0641\u0623", "DejaVu Sans"}, // which the serifed face lacks
                 {400, "\xFF", "DejaVu Serif"}};
    for (const auto& [weight, text, name] : cases) {
        const std::optional<FaceFile> found = desktop_.standIn(lacking(weight), text);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->name, name) << text;
        EXPECT_TRUE(found->file.starts_with(fonts_));
    }
}

TEST_F(TheDesktop, KnowsCharactersOfItsFacesThatOthersMayLack) {
    const FaceFile face{"", fonts_ + "/DejaVuSans.ttf"};
    EXPECT_TRUE(desktop_.someCharacters(face).starts_with("\u0250\u0251\u0252"));
    EXPECT_EQ(desktop_.someCharacters({"", face.file, 7}), "");
    EXPECT_EQ(desktop_.someCharacters({"", "/dev/null"}), "");
}

TEST(AFace, IsFoundInItsFileByPlaceAndInstance) {
    InstalledFace face;
    face.index = 3 | 2 << 16;
    EXPECT_EQ(fileOf(face).index, 3U | 2U << 16U);
    face.index = static_cast<int>(0x80000001U); // a variable font as a whole
    EXPECT_EQ(fileOf(face).index, 1U);
}

} // namespace
} // namespace host
