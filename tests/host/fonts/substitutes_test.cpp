// SPDX-License-Identifier: MIT
// What is drawn instead, by settings that the test makes up, with the faces of one family.
#include "host/fonts/substitutes.h"
#include "tests/support/temporaryfolder.h"

#include <gtest/gtest.h>

namespace host {
namespace {

class TheDesktopsSubstitute : public testing::Test {
protected:
    static Face lacking(const char* family) {
        Face face;
        face.family = family;
        return face;
    }
    const testsupport::TemporaryFolder folder_;
    const testsupport::Variable settings_{
        "FONTCONFIG_FILE",
        folder_
            .write("fonts.conf",
                   "<?xml version='1.0'?><fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir>"
                   "<alias binding='same'><family>Old Mono</family>"
                   "<accept><family>DejaVu Sans Mono</family></accept></alias>"
                   "<match><edit name='family' mode='append_last'>"
                   "<string>DejaVu Sans</string></edit></match><cachedir>" +
                       (folder_ / "cache").string() + "</cachedir></fontconfig>")
            .string()};
    Substitutes substitutes_;
};

TEST_F(TheDesktopsSubstitute, IsNamedWithItsGround) {
    const struct {
        const char* family;
        std::vector<std::string> later;
        const char* name;
        bool listed;
        bool sameMetrics;
    } cases[] = {
        {"Nowhere", {}, "DejaVu Sans", false, false},
        {"Nowhere", {"Nothing", "dejavu serif", "DejaVu Sans"}, "DejaVu Serif", true, false},
        {"Nowhere", {"Nothing"}, "DejaVu Sans", false, false},
        {"Old Mono", {}, "DejaVu Sans Mono", false, true},
        {"Old Mono", {"DejaVu Serif"}, "DejaVu Sans Mono", false, true},
        {"Nowhere", {"Old Mono"}, "DejaVu Sans Mono", false, false},
    };
    for (const auto& [family, later, name, listed, sameMetrics] : cases) {
        const auto found = substitutes_.of(lacking(family), later);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->face.name, name) << family;
        EXPECT_EQ(found->listed, listed) << family;
        EXPECT_EQ(found->sameMetrics, sameMetrics) << family;
    }
}

TEST_F(TheDesktopsSubstitute, HasTheCharactersOfAnyFont) {
    EXPECT_TRUE(substitutes_.canDraw(U'\u0645')); // which the family's serifed faces lack
    EXPECT_TRUE(substitutes_.canDraw(U'\u00E4'));
    EXPECT_FALSE(substitutes_.canDraw(U'\u4E2D'));
}

} // namespace
} // namespace host
