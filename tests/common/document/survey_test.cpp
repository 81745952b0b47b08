// SPDX-License-Identifier: MIT
// Which fonts of a document are found, what is written down about them, and how one is replaced.
#include "VexFontSuite.h"
#include "ate/itext.h"
#include "tests/support/plugin/startedplugin.h"

#include <tuple>

namespace {

using GLY::GLYFontInfo;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Throws;

using Infos = VexFontSuite::FontInfos;

std::vector<std::string> namesOf(const Infos& fonts) {
    std::vector<std::string> names;
    for (const auto& info : fonts) {
        names.push_back(info->font.psName);
    }
    return names;
}

class ASurvey : public AStartedPlugin {
protected:
    std::vector<std::string> names() {
        Infos fonts;
        EXPECT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
        return namesOf(fonts);
    }

    AIFontKey alpha = host.addFont("Alpha", "Regular", true);
    AIFontKey beta = host.addFont("Beta", "Regular", false);
    AIFontKey gamma = host.addFont("Gamma", "Regular", true);
};

TEST_F(ASurvey, OfADocumentWithoutTextIsEmpty) {
    EXPECT_THAT(names(), IsEmpty());
    host.addLayer();
    host.addLayer().addGroup();
    host.addLayer().addText({});
    host.addLayer().addText({{}, {}});
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(ASurvey, SeesEveryFontOfEveryRunOfEveryFrame) {
    AIArt& first = host.addLayer();
    first.addText({{gamma}});
    first.addOther(5);
    first.addText({{beta}, {gamma, alpha}, {gamma}});
    host.addLayer().addText({{host.addFont("Aleph", "Regular", true)}});
    EXPECT_THAT(names(),
                ElementsAre("Aleph-Regular", "Alpha-Regular", "Beta-Regular", "Gamma-Regular"));
}

TEST_F(ASurvey, KeepsTheFirstFontOfAFamily) {
    AIArt& top = host.addLayer();
    top.addText({{host.addFont("Beta", "Bold", true)}, {beta}, {host.addFont("beta", "x", true)}});
    EXPECT_THAT(names(), ElementsAre("Beta-Bold", "beta-x")); // byte by byte
}

TEST_F(ASurvey, AddsToWhatIsThereAndSortsAllOfIt) {
    host.addLayer().addText({{gamma}, {alpha}});
    Infos fonts;
    for (const char* family : {"Zeta", "Beta"}) {
        Orvil::SmartPointer<GLYFontInfo> info(new GLYFontInfo);
        info->font.familyName = family;
        info->font.psName = std::string("old ") + family;
        fonts.push_back(info);
    }
    EXPECT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
    EXPECT_THAT(namesOf(fonts),
                ElementsAre("Alpha-Regular", "old Beta", "Gamma-Regular", "old Zeta"));
}

TEST_F(ASurvey, WritesDownWhatTheHostTells) {
    const auto face = [](std::string style, std::int32_t technology, bool openType, bool present) {
        AIFontFace result{"Ps", std::move(style), "Fam", "User Name", {}};
        result.style = {technology, AIBoolean{openType}, AIBoolean{present}};
        return result;
    };
    const std::tuple<AIFontFace, const char*, const char*, int> cases[] = {
        {face("Bold", 0, false, true), "Bold", "Ps-Bold", 0},
        {face("Bold", 0, true, false), "Bold", "Ps-Bold", 2},
        {face("Bold", 1, false, true), "Bold", "Ps-Bold", 1},
        {face("Bold", 1, true, true), "Bold", "Ps-Bold", 3},
        {face("Bold", 5, true, true), "Bold", "Ps-Bold", 4},
        {face("Bold", -1, false, true), "Bold", "Ps-Bold", 4},
        {face("", 1, false, false), "Regular", "Ps-", 1},
    };
    for (const auto& [told, style, syncID, type] : cases) {
        host.layers.clear();
        host.addLayer().addText({{host.addFont(told)}});
        Infos fonts;
        ASSERT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
        ASSERT_EQ(fonts.size(), 1U);
        const GLYFontInfo& info = *fonts[0];
        EXPECT_EQ(info.font.psName, "Ps");
        EXPECT_EQ(info.font.familyName, "Fam");
        EXPECT_EQ(info.font.styleName, style);
        EXPECT_EQ(info.font.syncID, syncID);
        EXPECT_EQ(info.font.type, type);
        EXPECT_EQ(info.font.isActive, told.style.isPresent != 0);
        EXPECT_EQ(info.hostName, "User Name");
        EXPECT_EQ(info.installed, 0);
    }
}

TEST_F(ASurvey, CutsLongNames) {
    const std::string name(5000, 'n');
    host.addLayer().addText({{host.addFont({name, name, name, name, {}})}});
    Infos fonts;
    ASSERT_EQ(VexFontSuite::getMissingFontInfos(fonts), kNoErr);
    const std::string cut(999, 'n');
    const Protocol::Font& font = fonts[0]->font;
    EXPECT_THAT((std::array{font.psName, font.styleName, font.familyName, fonts[0]->hostName}),
                testing::Each(cut));
    EXPECT_EQ(font.syncID, cut + "-" + cut);
}

TEST_F(ASurvey, AsksForAFontsNamesOnce) {
    AIArt& top = host.addLayer();
    for (int i = 0; i < 50; ++i) {
        top.addText({{alpha}, {beta, alpha}});
    }
    EXPECT_EQ(names().size(), 2U);
    EXPECT_EQ(host.callsOf("GetFontFamilyName"), 2);
}

// Which steps of the host may fail, and what is left of the survey then. The document: two layers,
// the first with alpha and beta, the second with gamma.
TEST_F(ASurvey, EndsOrGoesOnWithAFailingHost) {
    AIArt& top = host.addLayer();
    top.addText({{alpha}});
    top.addText({{beta}});
    host.addLayer().addText({{gamma}});
    const std::vector<std::string> all{"Alpha-Regular", "Beta-Regular", "Gamma-Regular"};
    // The call, which of them fails, the result, and what is found.
    const std::tuple<const char*, int, AIErr, std::vector<std::string>> cases[] = {
        {"GetFirstLayer", 1, 61, {}},
        {"GetNextLayer", 1, 61, {all[0], all[1]}},
        {"GetNextLayer", 2, 61, all},
        {"GetFirstArtOfLayer", 1, 0, {all[2]}},
        {"GetArtType", 1, 61, {}},              // the first top group
        {"GetArtType", 2, 0, {all[2]}},         // its first child: the group ends there
        {"GetArtType", 3, 0, {all[0], all[2]}}, // its second child
        {"GetArtType", 4, 61, {}},              // the second top group
        {"GetArtFirstChild", 1, 0, {all[2]}},
        {"GetArtSibling", 1, 0, {all[0], all[2]}},
        {"GetArtParent", 1, 0, all},
    };
    for (const auto& [call, nth, result, found] : cases) {
        SCOPED_TRACE(std::string(call) + " " + std::to_string(nth));
        host.fail(call, 61, nth);
        Infos fonts;
        EXPECT_EQ(VexFontSuite::getMissingFontInfos(fonts), result);
        EXPECT_EQ(namesOf(fonts), found);
        host.fail(call, 0);
    }
}

TEST_F(ASurvey, ThrowsWhatTheTextEngineReportsAndHoldsNothing) {
    host.addLayer().addText({{alpha}, {beta}});
    for (const char* call :
         {"GetATETextFrame", "GetTextRange", "GetTextRunsIterator", "IsDone", "Item",
          "HasLocalCharFeatures", "GetCharInspector", "GetFont", "GetSize", "FontItem", "Next"}) {
        host.fail(call, 62, 1);
        Infos fonts;
        EXPECT_THAT([&] { std::ignore = VexFontSuite::getMissingFontInfos(fonts); },
                    Throws<ATE::Exception>(Field(&ATE::Exception::error, 62)))
            << call;
        EXPECT_THAT(fonts, IsEmpty());
        EXPECT_EQ(host.text.liveReferences(), 0) << call;
    }
}

TEST(TheCounts, TellStatesApart) {
    Infos fonts;
    EXPECT_EQ(VexFontSuite::getNumMissingFonts(fonts), 0);
    EXPECT_EQ(VexFontSuite::getNumFontsNotInstalled(fonts), 0);
    for (const auto& [isActive, installed] :
         {std::pair(true, 1), std::pair(true, 1), std::pair(false, 1), std::pair(true, 0),
          std::pair(true, 0), std::pair(true, 0)}) {
        Orvil::SmartPointer<GLYFontInfo> info(new GLYFontInfo);
        info->font.isActive = isActive;
        info->installed = installed;
        fonts.push_back(info);
    }
    EXPECT_EQ(VexFontSuite::getNumMissingFonts(fonts), 1);
    EXPECT_EQ(VexFontSuite::getNumFontsNotInstalled(fonts), 3);
}

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
    VexFontSuite::replaceFontWithFont("Old-Regular", "New Bold"); // as users see it
    EXPECT_EQ(first.runs, (Runs{{fresh}, {other}, {fresh}}));
    EXPECT_EQ(second.runs, Runs{{fresh}});
    EXPECT_EQ(nested.runs, Runs{{old}});
}

TEST_F(AReplacement, OfAFontThatIsNotThereChangesNothing) {
    for (const char* name : {"old-regular", "Old-Regula", "Old-Regular ", ""}) {
        VexFontSuite::replaceFontWithFont(name, "no such font either");
    }
    EXPECT_EQ(first.runs, (Runs{{old}, {other}, {other, old}}));
    EXPECT_EQ(host.callsOf("FindFont"), 0);
}

TEST_F(AReplacement, ThrowsTheErrorOfTheNewFontAndKeepsWhatIsDone) {
    EXPECT_THAT([] { VexFontSuite::replaceFontWithFont("Old-Regular", "unknown"); },
                testing::Throws<std::int32_t>(kNoSuchFontErr));
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
