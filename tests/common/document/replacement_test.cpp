// SPDX-License-Identifier: MIT
// Replacing a font throughout the document.
#include "VexFontSuite.h"
#include "tests/support/plugin/startedplugin.h"

#include "ate/itext.h"

namespace {

using Runs = std::vector<std::vector<AIFontKey>>;

class AReplacement : public AStartedPlugin {
protected:
    AIFontKey old = host.addFont("Old", "Regular", false);
    AIFontKey other = host.addFont("Other", "Regular", true);
    AIFontKey fresh = host.addFont("New", "Bold", true);
    AIArt& top = host.addLayer();
    AIArt& first = top.addText({{old}, {other}, {other, old}});
    AIArt& second = host.addLayer().addText({{old}});
};

TEST_F(AReplacement, ChangesTheRunsOfTheOldFontOnly) {
    AIArt& nested = top.addGroup().addText({{old}});
    VexFontSuite::replaceFontWithFont("Old-Regular", "New-Bold");
    EXPECT_EQ(first.runs, (Runs{{fresh}, {other}, {fresh}}));
    EXPECT_EQ(second.runs, Runs{{fresh}});
    EXPECT_EQ(nested.runs, Runs{{old}});
}

TEST_F(AReplacement, FindsTheNewFontByTheNameThatUsersSee) {
    VexFontSuite::replaceFontWithFont("Old-Regular", "New Bold");
    EXPECT_EQ(second.runs, Runs{{fresh}});
}

TEST_F(AReplacement, OfAFontThatIsNotThereChangesNothing) {
    for (const char* name : {"old-regular", "Old-Regula", "Old-Regular ", ""}) {
        VexFontSuite::replaceFontWithFont(name, "no such font either");
    }
    EXPECT_EQ(first.runs, (Runs{{old}, {other}, {other, old}}));
    EXPECT_EQ(host.callsOf("FindFont"), 0);
}

TEST_F(AReplacement, ThrowsTheErrorOfTheNewFontAndKeepsWhatIsDone) {
    try {
        VexFontSuite::replaceFontWithFont("Old-Regular", "unknown");
        ADD_FAILURE() << "not thrown";
    } catch (std::int32_t error) {
        EXPECT_EQ(error, kNoSuchFontErr);
    }
    EXPECT_EQ(first.runs, (Runs{{old}, {other}, {other, old}}));

    host.fail("FindFont", 71, 2);
    EXPECT_THROW(VexFontSuite::replaceFontWithFont("Old-Regular", "New-Bold"), std::int32_t);
    EXPECT_EQ(first.runs, (Runs{{fresh}, {other}, {other, old}}));
    EXPECT_EQ(second.runs, Runs{{old}});
}

TEST_F(AReplacement, HoldsNothingWhenTheTextEngineFails) {
    host.fail("FontFromFontKey", 72, 1);
    EXPECT_THROW(VexFontSuite::replaceFontWithFont("Old-Regular", "New-Bold"), std::int32_t);
    for (const char* call : {"CreateCharFeatures", "SetFont", "ReplaceOrAddLocalCharFeatures"}) {
        host.fail(call, 72, 1);
        EXPECT_THROW(VexFontSuite::replaceFontWithFont("Old-Regular", "New-Bold"), ATE::Exception)
            << call;
        EXPECT_EQ(host.text.liveReferences(), 0) << call;
    }
}

} // namespace
