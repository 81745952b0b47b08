// SPDX-License-Identifier: MIT
// Names of faces.
#include "host/documents/face.h"

#include <gtest/gtest.h>

namespace host {
namespace {

TEST(AConventionalName, IsFamilyAndStyleWithoutBlanks) {
    EXPECT_EQ(conventionalPostScriptName("Missing Sans", "Bold Italic"), "MissingSans-BoldItalic");
    EXPECT_EQ(conventionalPostScriptName("Missing", "Regular"), "Missing-Regular");
    EXPECT_EQ(conventionalPostScriptName("Missing", ""), "Missing-Regular");
}

TEST(AStyleName, SaysWhatItsWordsMean) {
    struct Case {
        const char* words;
        int weight;
        Slant slant;
        double stretch;
    };
    for (const Case& c :
         {Case{"BoldItalic", 700, Slant::Italic, 100},
          Case{"Condensed Extra Light", 200, Slant::Upright, 75},
          Case{"ExtraCondensed-ExtraLight", 200, Slant::Upright, 62.5},
          Case{"SemiBold It", 600, Slant::Italic, 100}, Case{"BoldMT", 700, Slant::Upright, 100},
          Case{"Book Oblique", 400, Slant::Oblique, 100}, Case{"BdIta", 700, Slant::Italic, 100},
          Case{"BoldDisp", 700, Slant::Upright, 100}, Case{"BdCnO", 700, Slant::Oblique, 75},
          Case{"CaptIt", 400, Slant::Italic, 100}, Case{"LtExtObl", 300, Slant::Oblique, 125},
          Case{"SemiboldSemiExtItSubh", 600, Slant::Italic, 112.5}}) {
        const StyleWords words = readStyleWords(c.words);
        EXPECT_TRUE(words.complete) << c.words;
        EXPECT_EQ(words.weight, c.weight) << c.words;
        EXPECT_EQ(words.slant, c.slant) << c.words;
        EXPECT_EQ(words.stretch, c.stretch) << c.words;
    }
    EXPECT_FALSE(readStyleWords("Bold Swash").complete);
}

TEST(AStyleName, ReadsBackAsWhatItWasMadeOf) {
    for (int weight = 100; weight <= 900; weight += 100) {
        for (const Slant slant : {Slant::Upright, Slant::Italic, Slant::Oblique}) {
            for (const double stretch :
                 {50.0, 62.5, 75.0, 87.5, 100.0, 112.5, 125.0, 150.0, 200.0}) {
                const StyleWords words = readStyleWords(styleText(weight, slant, stretch));
                EXPECT_TRUE(words.complete && words.weight == weight && words.slant == slant &&
                            words.stretch == stretch)
                    << styleText(weight, slant, stretch);
            }
        }
    }
}

} // namespace
} // namespace host
