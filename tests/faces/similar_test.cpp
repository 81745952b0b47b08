// SPDX-License-Identifier: MIT
// What outlines and characters of real fonts tell, and which faces are found to be alike by it.
#include "faces/coverage.h"
#include "faces/fontfile.h"
#include "faces/similar.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace faces;
using testing::IsSupersetOf;

namespace {

Face installed(const std::string& name) {
    return readFontFile("/usr/share/fonts/truetype/dejavu/" + name + ".ttf").faces.at(0);
}

TEST(AFace, IsMeasuredAndClassifiedByItsOutlines) {
    const struct {
        const char* file;
        Classification classification;
        double weight;
        double xHeight; // as a ruler tells it on a large print
        double stem;
        double serif;
        double serifThickness;
    } cases[] = {
        {"DejaVuSans", Classification::SansSerif, 400, 0.547, 0.090, 0, 0},
        {"DejaVuSans-Bold", Classification::SansSerif, 700, 0.547, 0.175, 0, 0},
        {"DejaVuSerif", Classification::Serif, 400, 0.519, 0.088, 0.093, 0.052},
        {"DejaVuSansMono", Classification::Monospaced, 400, 0.547, 0.090, 0, 0},
    };
    for (const auto& [file, classification, weight, xHeight, stem, serif, serifThickness] : cases) {
        const Face face = installed(file);
        EXPECT_EQ(face.classification, classification) << file;
        EXPECT_EQ(face.style, (Style{weight, 100, Slant::Upright})) << file;
        const Measures measures = face.measures.value();
        EXPECT_NEAR(measures.xHeight, xHeight, 0.01) << file;
        EXPECT_NEAR(measures.stem, stem, 0.01) << file;
        EXPECT_NEAR(measures.serif, serif, 0.01) << file;
        EXPECT_NEAR(measures.serifThickness, serifThickness, 0.01) << file;
        EXPECT_NEAR(measures.slant, 0, 0.5) << file;
    }
}

TEST(AFace, TellsWhatItCanWrite) {
    const Face face = installed("DejaVuSans");
    EXPECT_THAT(face.scripts, IsSupersetOf({"Arab", "Cyrl", "Grek", "Hebr", "Latn"}));
    EXPECT_THAT(face.languages, IsSupersetOf({"de", "el", "ru", "tr"}));
    EXPECT_THAT(face.languages, testing::Not(testing::Contains("ja")));
    EXPECT_THAT(face.features, IsSupersetOf({"kern", "liga", "mark"}));
    EXPECT_TRUE(covers(face.coverage, U'ß'));
    EXPECT_FALSE(covers(face.coverage, U'漢'));
}

TEST(SimilarFaces, ComeInTheOrderOfTheirDistance) {
    Face wanted = installed("DejaVuSans");
    // The same letters on a larger em square, as a copy for another font's metrics has them.
    for (double* length :
         {&wanted.measures->xHeight, &wanted.measures->capitalHeight, &wanted.measures->ascender,
          &wanted.measures->descender, &wanted.measures->letterWidth,
          &wanted.measures->capitalWidth, &wanted.measures->digitWidth, &wanted.measures->stem}) {
        *length *= 0.9;
    }
    std::vector<Likeness> all;
    for (const char* file : {"DejaVuSerif", "DejaVuSans-Bold", "DejaVuSansMono", "DejaVuSans"}) {
        all.push_back(likenessOf(installed(file)).value());
    }
    const auto found = similarFaces(likenessOf(wanted).value(), all, 2);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].place, 3U);
    EXPECT_LT(found[0].distance, found[1].distance);
    EXPECT_EQ(similarFaces(all[0], all, 9).size(), all.size());
    EXPECT_EQ(distance(all[0], all[0]), 0);
    EXPECT_EQ(lineOf(differences(all[3], all[0])), "with serifs");
    EXPECT_EQ(lineOf(differences(all[1], all[3])), "lighter, narrower");
    EXPECT_EQ(lineOf(differences(all[2], all[3])), "not monospaced, narrower");

    Face slab = installed("DejaVuSerif");
    slab.measures->serifThickness = slab.measures->stem;
    EXPECT_EQ(lineOf(differences(all[0], likenessOf(slab).value())), "thicker serifs");
    EXPECT_GT(distance(all[0], likenessOf(slab).value()), 1);

    const Coverage& coverage = wanted.coverage;
    EXPECT_EQ(distanceOfCoverage(coverage, U"Größe Ж"), 0);
    EXPECT_GT(distanceOfCoverage(coverage, U"漢字"), distanceOfCoverage(coverage, U"a漢"));
    EXPECT_GT(distanceOfCoverage(coverage, U"a漢"), 16) << "more than a likeness makes up for";
}

} // namespace
