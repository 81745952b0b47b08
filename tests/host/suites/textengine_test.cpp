// SPDX-License-Identifier: MIT
// The text engine's objects: what they tell, how they are counted, and misuse of references.
#include "applicationfixture.h"

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TheTextEngine : public ApplicationFixture {
protected:
    TheTextEngine() {
        open(makeDocument({{{{named("Alpha", "Regular")},
                             {named("Nope", "Bold")},
                             {named("Ghost", "Regular"), false},
                             {named("Alpha", "Regular")}}}}));
    }

    static ATE::ITextFrame frame() {
        AILayerHandle layer = nullptr;
        AIArtHandle art = nullptr;
        ATE::TextFrameRef ref = nullptr;
        sAILayer->GetFirstLayer(&layer);
        sAIArt->GetFirstArtOfLayer(layer, &art);
        EXPECT_EQ(sAITextFrame->GetATETextFrame(art, &ref), kBadParameterErr) << "it is a group";
        sAIArt->GetArtFirstChild(art, &art);
        EXPECT_EQ(sAITextFrame->GetATETextFrame(art, &ref), kNoErr);
        return ATE::ITextFrame(ref);
    }
    static std::string nameOf(const ATE::IFont& font) {
        AIFontKey key = nullptr;
        char name[100];
        EXPECT_EQ(sAIFont->FontKeyFromFont(font.GetRef(), &key), kNoErr);
        EXPECT_EQ(sAIFont->GetPostScriptFontName(key, name, sizeof name), kNoErr);
        return name;
    }
    static std::vector<std::string> namesOf(const ATE::ITextRange& range) {
        const ATE::IArrayFontRef fonts = range.GetCharInspector().GetFont();
        std::vector<std::string> names;
        names.reserve(static_cast<std::size_t>(fonts.GetSize()));
        for (std::int32_t i = 0; i < fonts.GetSize(); ++i) {
            names.push_back(nameOf(fonts.Item(i)));
        }
        return names;
    }
    static ATE::IFont fontNamed(const char* name) {
        AIFontKey key = nullptr;
        ATE::FontRef font = nullptr;
        EXPECT_EQ(sAIFont->FindFont(name, kAIAnyFontTechnology, kAINoFontScript,
                                    kAIMatchAllFontNames, &key),
                  kNoErr);
        EXPECT_EQ(sAIFont->FontFromFontKey(key, &font), kNoErr);
        return ATE::IFont(font);
    }
    std::vector<std::string> noted() {
        std::vector<std::string> texts;
        for (const Misbehaviour& entry : application.core().ledger().entries()) {
            texts.push_back(entry.what);
        }
        return texts;
    }
};

TEST_F(TheTextEngine, ShowsOneFontPerVisibleRun) {
    {
        const ATE::ITextRange whole = frame().GetTextRange(true);
        EXPECT_TRUE(whole.HasLocalCharFeatures());
        EXPECT_THAT(namesOf(whole), ElementsAre("Alpha-Regular", "Nope-Bold"));
        std::vector<std::vector<std::string>> runs;
        const ATE::ITextRunsIterator iterator = whole.GetTextRunsIterator();
        for (; !iterator.IsDone(); iterator.Next()) {
            runs.push_back(namesOf(iterator.Item()));
        }
        EXPECT_THAT(runs, ElementsAre(ElementsAre("Alpha-Regular"), ElementsAre("Nope-Bold"),
                                      IsEmpty(), ElementsAre("Alpha-Regular")));
        EXPECT_THROW(static_cast<void>(iterator.Item()), ATE::Exception);
        EXPECT_THROW(iterator.Next(), ATE::Exception);
    }
    leave();
    EXPECT_EQ(application.textEngine().liveObjects(), 0U);
    EXPECT_THAT(frontend.misbehaviour, IsEmpty());
}

TEST_F(TheTextEngine, ReplacesTheFontOfARunWithoutDisturbingTheWalk) {
    const ATE::ITextRange whole = frame().GetTextRange(true);
    const ATE::ICharFeatures features = ATE::ICharFeatures::Create();
    const ATE::ITextRunsIterator iterator = whole.GetTextRunsIterator();
    int runs = 0;
    for (; !iterator.IsDone(); iterator.Next(), ++runs) {
        const ATE::ITextRange run = iterator.Item();
        const ATE::IArrayFontRef fonts = run.GetCharInspector().GetFont();
        run.ReplaceOrAddLocalCharFeatures(features); // holds nothing yet: changes nothing
        for (std::int32_t i = 0; i < fonts.GetSize(); ++i) {
            if (nameOf(fonts.Item(i)) == "Nope-Bold") {
                features.SetFont(fontNamed("Beta-Italic"));
                run.ReplaceOrAddLocalCharFeatures(features);
                EXPECT_EQ(nameOf(fonts.Item(i)), "Nope-Bold") << "the array is a copy";
                features.SetFont(fonts.Item(i));
            }
        }
        if (runs == 1) {
            break;
        }
    }
    EXPECT_THAT(namesOf(whole), ElementsAre("Alpha-Regular", "Beta-Italic"));
    const Document& document = application.documents().current()->document();
    EXPECT_TRUE(document.modified());
    EXPECT_FALSE(document.run(0).replaced);
    EXPECT_TRUE(document.run(1).replaced);
    EXPECT_EQ(document.faceOf(document.run(1)).family, "Beta");
}

TEST_F(TheTextEngine, CountsReferences) {
    ATE::ITextRange range = frame().GetTextRange(false);
    const ATE::TextRangeRef ref = range.GetRef();
    {
        const ATE::ITextRange copy = range; // NOLINT: a second count is the point
        range = ATE::ITextRange();
        EXPECT_THAT(namesOf(copy).size(), 2U);
    }
    EXPECT_NE(sTextRange->AddRef(ref), kNoErr);
    EXPECT_NE(sTextRange->Release(ref), kNoErr);
    ATE::TextRunsIteratorRef iterator = nullptr;
    EXPECT_NE(sTextRange->GetTextRunsIterator(ref, &iterator), kNoErr);
    EXPECT_THAT(noted(), ElementsAre("added a reference to a text range reference that is dead",
                                     "released a text range reference that is dead",
                                     "used a text range reference that is dead"));
}

TEST_F(TheTextEngine, KnowsReferencesThatAreForeignOrOfAnotherKind) {
    const ATE::ITextRange range = frame().GetTextRange(true);
    std::int32_t size = 0;
    ATE::FontRef font = nullptr;
    EXPECT_NE(sArrayFontRef->GetSize(reinterpret_cast<ATE::ArrayFontRefRef>(range.GetRef()), &size),
              kNoErr);
    EXPECT_NE(sArrayFontRef->Item(reinterpret_cast<ATE::ArrayFontRefRef>(this), 0, &font), kNoErr);
    const ATE::IArrayFontRef fonts = range.GetCharInspector().GetFont();
    EXPECT_NE(sArrayFontRef->Item(fonts.GetRef(), 2, &font), kNoErr);
    EXPECT_NE(sArrayFontRef->Item(fonts.GetRef(), -1, &font), kNoErr);
    EXPECT_THAT(noted(), ElementsAre("used a font array reference that is one of a text range",
                                     "used a font array reference that is none of the host's"));
}

TEST_F(TheTextEngine, HasNothingToTellOfAClosedDocument) {
    {
        const ATE::ITextRange range = frame().GetTextRange(true);
        const ATE::IFont font = range.GetCharInspector().GetFont().Item(0);
        application.closeDocument(application.documents().current()->serial());
        EXPECT_THROW(static_cast<void>(range.GetTextRunsIterator()), ATE::Exception);
        EXPECT_EQ(nameOf(font), "Alpha-Regular") << "fonts belong to the host";
    }
    leave();
    EXPECT_THAT(noted(), ElementsAre("used a text range reference that is of a closed document"))
        << "releasing is in order";
}

TEST_F(TheTextEngine, TakesLeakedReferencesBack) {
    ATE::FontRef font = fontNamed("Alpha-Bold").GetRef(); // released with the temporary
    ATE::CharFeaturesRef features = nullptr;
    EXPECT_NE(sFont->Release(font), kNoErr);
    sCharFeatures->Create(&features);
    sCharFeatures->Create(&features);
    leave();
    EXPECT_EQ(application.textEngine().liveObjects(), 0U);
    EXPECT_THAT(noted(), ElementsAre("released a font reference that is dead",
                                     "leaked 2 character features reference(s)"));
}

} // namespace
} // namespace host::test
