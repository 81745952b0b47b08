// SPDX-License-Identifier: MIT
// The states of a document's faces before and after.
#include "applicationfixture.h"

#include "host/suites/facesurvey.h"

#include <tuple>

namespace host::test {
namespace {

using testing::ElementsAre;

class AFaceSurvey : public ApplicationFixture {
protected:
    using Line = std::tuple<std::string, std::string, std::string, std::size_t, std::size_t>;

    static std::vector<Line> linesOf(const std::vector<FaceOutcome>& faces) {
        std::vector<Line> lines;
        lines.reserve(faces.size());
        for (const FaceOutcome& face : faces) {
            lines.emplace_back(face.postScriptName, face.before ? textOf(*face.before) : "-",
                               textOf(face.after), face.runs, face.runsNow);
        }
        return lines;
    }
};

TEST_F(AFaceSurvey, TellsWhatBecameOfEachFace) {
    Face generic = named("serif", "Regular");
    generic.origin = FaceOrigin::Generic;
    Face embedded = named("Brought", "Regular");
    embedded.origin = FaceOrigin::Embedded;
    OpenDocument& document = open(makeDocument({{{{named("Alpha", "Regular")},
                                                  {named("Library", "Bold")},
                                                  {named("Nowhere", "Regular")},
                                                  {named("Old", "Regular")},
                                                  {generic},
                                                  {embedded},
                                                  {named("Unseen", "Regular"), false},
                                                  {named("Library", "Bold")},
                                                  {named("Old", "Regular")}}}}));
    FontList& fonts = application.fonts();
    const FaceSurvey survey(document, fonts);

    faces.push_back(installed("Library", "Bold"));
    document.document().replaceFace(3, named("Beta", "Italic"));
    document.document().replaceFace(8, named("Alpha", "Regular"));
    application.refreshFonts();

    EXPECT_THAT(linesOf(survey.compareWith(document, fonts)),
                ElementsAre(Line{"Alpha-Regular", "installed", "installed", 1, 2},
                            Line{"Library-Bold", "missing", "activated now", 2, 2},
                            Line{"Nowhere-Regular", "missing", "missing", 1, 1},
                            Line{"Old-Regular", "missing", "replaced", 2, 0},
                            Line{"serif-Regular", "generic", "generic", 1, 1},
                            Line{"Brought-Regular", "embedded", "embedded", 1, 1},
                            Line{"Beta-Italic", "-", "installed", 0, 1}));
}

TEST_F(AFaceSurvey, TellsFacesApartThatBecomeOneFont) {
    Face byName = named("Gamma-Bold", "Bold");
    byName.postScriptName = "Gamma-Bold";
    OpenDocument& document = open(makeDocument({{{{named("Gamma", "Bold")},
                                                  {byName},
                                                  {named("Old", "Regular")},
                                                  {named("Gamma", "Bold")}}}}));
    FontList& fonts = application.fonts();
    const FaceSurvey survey(document, fonts);
    faces.push_back(installed("Gamma", "Bold"));
    document.document().replaceFace(2, named("gamma", "Bold"));
    application.refreshFonts();
    EXPECT_THAT(linesOf(survey.compareWith(document, fonts)),
                ElementsAre(Line{"Gamma-Bold", "missing", "activated now", 2, 3},
                            Line{"Gamma-Bold", "missing", "activated now", 1, 1},
                            Line{"Old-Regular", "missing", "replaced", 1, 0}));
}

TEST_F(AFaceSurvey, NoticesAFontThatWent) {
    OpenDocument& document = open(makeDocument({{{{named("Alpha", "Regular")}}}}));
    const FaceSurvey survey(document, application.fonts());
    faces.clear();
    application.refreshFonts();
    EXPECT_THAT(linesOf(survey.compareWith(document, application.fonts())),
                ElementsAre(Line{"Alpha-Regular", "installed", "missing", 1, 1}));
    EXPECT_THAT(linesOf(survey.asTaken()),
                ElementsAre(Line{"Alpha-Regular", "installed", "installed", 1, 1}));
}

} // namespace
} // namespace host::test
