// SPDX-License-Identifier: MIT
// The words of styles, and names reduced for comparison.
#include "faces/namedecoder.h"
#include "faces/namekey.h"
#include "faces/stylewords.h"

#include <gtest/gtest.h>

using namespace faces;

namespace {

TEST(AStyleName, SaysWhatItsWordsMean) {
    const struct {
        const char* words;
        Style style;
    } cases[] = {
        {"BoldItalic", {700, 100, Slant::Italic}},
        {"Condensed Extra Light", {200, 75}},
        {"ExtraCondensed-ExtraLight", {200, 62.5}},
        {"SemiBold It", {600, 100, Slant::Italic}},
        {"BoldMT", {700}},
        {"Book Oblique", {400, 100, Slant::Oblique}},
        {"BdIta", {700, 100, Slant::Italic}},
        {"BoldDisp", {700}},
        {"BdCnO", {700, 75, Slant::Oblique}},
        {"CaptIt", {400, 100, Slant::Italic}},
        {"LtExtObl", {300, 125, Slant::Oblique}},
        {"SemiboldSemiExtItSubh", {600, 112.5, Slant::Italic}},
        {"Demi Inclined", {600, 100, Slant::Oblique}},
        {"Upright Plain", {}},
    };
    for (const auto& [words, style] : cases) {
        EXPECT_TRUE(readStyleWords(words).complete) << words;
        EXPECT_EQ(readStyleWords(words).style(), style) << words;
    }
    const StyleWords partly = readStyleWords("Bold Monotone 12");
    EXPECT_FALSE(partly.complete);
    EXPECT_EQ(partly.style(), Style{700}) << "what is known of it, and no word within another";
}

TEST(AStyleName, ReadsBackAsWhatItWasMadeOf) {
    for (int weight = 100; weight <= 900; weight += 100) {
        for (const Slant slant : {Slant::Upright, Slant::Italic, Slant::Oblique}) {
            for (const double width : {50.0, 62.5, 75.0, 87.5, 100.0, 112.5, 125.0, 150.0, 200.0}) {
                const Style style{static_cast<double>(weight), width, slant};
                EXPECT_TRUE(readStyleWords(styleText(style)).complete) << styleText(style);
                EXPECT_EQ(readStyleWords(styleText(style)).style(), style) << styleText(style);
            }
        }
    }
}

TEST(ALiteral, HasItsEscapesResolved) {
    const struct {
        const char* written;
        const char* text;
    } cases[] = {{R"(TeX\040feybl10)", "TeX feybl10"},
                 {R"(\050a\) \(b\)", R"((a) (b\)"},
                 {R"(\303\274 \04 \x \)", R"(\303\274 \04 \x \)"},
                 {R"(\176\177\037)", R"(~\177\037)"}};
    for (const auto& [written, text] : cases) {
        EXPECT_EQ(decodeLiteral(written), text);
    }
}

TEST(AKey, LeavesOutWhatDoesNotCount) {
    EXPECT_EQ(nameKey(" EB  Garamond\t"), nameKey("ebgaramond"));
    EXPECT_EQ(nameKey("MÜLLER  Söhne"), nameKey("Müller söhne"));
    EXPECT_EQ(nameKey("ГОСТ"), nameKey("гост"));
    EXPECT_NE(nameKey("A-B"), nameKey("AB"));
    const struct {
        const char* name;
        const char* key;
    } cases[] = {
        {"Minion Pro", "minion"},     {"MinionPro", "minion"},
        {"Foo-Bar_Baz", "foobarbaz"}, {"Arial MT Std", "arial"},
        {"Impro", "impro"},           {"Pro", "pro"},
        {"Scala LT Com", "scala"},    {"Müller Söhne OT", "müllersöhne"},
    };
    for (const auto& [name, key] : cases) {
        EXPECT_EQ(normalisedFamilyKey(name), key) << name;
    }
}

} // namespace
