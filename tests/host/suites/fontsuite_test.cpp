// SPDX-License-Identifier: MIT
// Fonts by key, and finding them by their names.
#include "applicationfixture.h"

#include "host/core/text.h"

namespace host::test {
namespace {

using testing::ElementsAre;

class TheFontSuite : public ApplicationFixture {
protected:
    using NameCall = decltype(AIFontSuite::GetFontFamilyName);

    static std::string name(NameCall call, AIFontKey key, std::int32_t size = 1000) {
        std::string buffer(static_cast<std::size_t>(size), '#');
        EXPECT_EQ(call(key, buffer.data(), size), kNoErr);
        buffer.resize(buffer.find('\0'));
        return buffer;
    }
    static SPErr find(const char* text, AIFontKey* key) {
        return sAIFont->FindFont(text, kAIAnyFontTechnology, kAINoFontScript, kAIMatchAllFontNames,
                                 key);
    }
    static std::string found(const char* text) {
        AIFontKey key = nullptr;
        const SPErr error = find(text, &key);
        return error == kNoErr ? name(sAIFont->GetPostScriptFontName, key) : errorText(error);
    }
    AIFontKey missingKey(const Face& face) {
        return FontList::handle(application.fonts().catalogue().resolve(face));
    }
};

TEST_F(TheFontSuite, FindsByPostScriptElseFullNameElseFamilyAndStyle) {
    faces.push_back(installed("Trap", "Regular"));
    faces.back().postScriptName = "Trap-One";
    faces.back().fullName = "Alpha-Bold"; // another face's PostScript name
    faces.push_back(installed("Gamma", "Regular"));
    faces.back().aliases = {{"Gamma Legacy", "Plain"}};
    application.refreshFonts();
    EXPECT_EQ(found("Alpha-Bold"), "Alpha-Bold");
    EXPECT_EQ(found("The Beta Italic"), "Beta-Italic");
    EXPECT_EQ(found("Alpha Regular"), "Alpha-Regular");
    EXPECT_EQ(found("Gamma Legacy Plain"), "Gamma-Regular");
    EXPECT_EQ(found("Trap Regular"), "Trap-One");
    EXPECT_EQ(found("Alpha"), "'FNT?'");
    EXPECT_EQ(found(""), "'FNT?'");
    AIFontKey key = nullptr;
    EXPECT_EQ(sAIFont->FindFont("Alpha-Bold", 0, 0, 1, &key), kBadParameterErr);
}

TEST_F(TheFontSuite, NoticesFontsThatComeAndGo) {
    EXPECT_EQ(found("New Regular"), "'FNT?'");
    AIFontKey beta = nullptr;
    EXPECT_EQ(find("Beta-Italic", &beta), kNoErr);
    faces.push_back(installed("New", "Regular"));
    std::erase_if(faces, [](const InstalledFace& face) { return face.family == "Beta"; });
    EXPECT_TRUE(application.refreshFonts());
    EXPECT_FALSE(application.refreshFonts());
    EXPECT_EQ(found("New Regular"), "New-Regular");
    AIFontStyleRecord record;
    EXPECT_EQ(sAIFont->GetFontStyle(beta, &record), kNoErr) << "keys stay valid";
    EXPECT_EQ(record.isPresent, 0);
}

TEST_F(TheFontSuite, ListsItsFontsInAStableOrder) {
    std::int32_t count = 0;
    EXPECT_EQ(sAIFont->CountFonts(&count), kNoErr);
    std::vector<std::string> names;
    for (std::int32_t n = 0; n < count; ++n) {
        AIFontKey key = nullptr;
        EXPECT_EQ(sAIFont->GetNthFont(n, &key), kNoErr);
        names.push_back(name(sAIFont->GetFontFamilyName, key) + "/" +
                        name(sAIFont->GetFontStyleName, key));
    }
    EXPECT_THAT(names, ElementsAre("Alpha/Bold", "Alpha/Regular", "Beta/Italic"));
    AIFontKey key = nullptr;
    EXPECT_EQ(sAIFont->GetNthFont(count, &key), kBadParameterErr);
    EXPECT_EQ(sAIFont->GetNthFont(-1, &key), kBadParameterErr);
}

TEST_F(TheFontSuite, TellsHowAFontIsMadeOnlyOfOneThatItHas) {
    struct Case {
        FontTechnology technology;
        bool openType;
    };
    for (const Case each :
         {Case{FontTechnology::PostScript, false}, Case{FontTechnology::PostScript, true},
          Case{FontTechnology::TrueType, true}}) {
        faces[2].technology = each.technology;
        faces[2].openType = each.openType;
        application.refreshFonts();
        AIFontKey key = nullptr;
        ASSERT_EQ(find("Beta-Italic", &key), kNoErr);
        AIFontStyleRecord record;
        EXPECT_EQ(sAIFont->GetFontStyle(key, &record), kNoErr);
        EXPECT_EQ(record.technology, static_cast<std::int32_t>(each.technology));
        EXPECT_EQ(record.isOpenType, each.openType);
        EXPECT_EQ(record.isPresent, 1);
    }
    AIFontStyleRecord record;
    EXPECT_EQ(sAIFont->GetFontStyle(missingKey(named("Nope", "Bold")), &record), kNoErr);
    EXPECT_EQ(record.isPresent, 0);
    EXPECT_GT(record.technology, 1);
}

TEST_F(TheFontSuite, GivesAMissingFontTheDocumentsNames) {
    const AIFontKey key = missingKey(named("No Such Sans", "Bold Italic"));
    EXPECT_EQ(name(sAIFont->GetFontFamilyName, key), "No Such Sans");
    EXPECT_EQ(name(sAIFont->GetFontStyleName, key), "Bold Italic");
    EXPECT_EQ(name(sAIFont->GetPostScriptFontName, key), "NoSuchSans-BoldItalic");
}

TEST_F(TheFontSuite, CutsNamesToTheBuffer) {
    const AIFontKey key = missingKey(named("\xC3\x84\xC3\x96\xC3\x9C", "Bold"));
    EXPECT_EQ(name(sAIFont->GetFontFamilyName, key, 7), "\xC3\x84\xC3\x96\xC3\x9C");
    EXPECT_EQ(name(sAIFont->GetFontFamilyName, key, 6), "\xC3\x84\xC3\x96");
    EXPECT_EQ(name(sAIFont->GetFontFamilyName, key, 1), "");
    char byte = 0;
    EXPECT_EQ(sAIFont->GetFontFamilyName(key, &byte, 0), kBadParameterErr);
}

TEST_F(TheFontSuite, RefusesKeysThatItNeverGave) {
    char buffer[10];
    ATE::FontRef font = nullptr;
    for (const std::uintptr_t bits : {std::uintptr_t{1000}, ~std::uintptr_t{0},
                                      (std::uintptr_t{1} << (HandleBits::indexBits - 1)) * 2 + 1}) {
        const auto key = reinterpret_cast<AIFontKey>(bits);
        EXPECT_EQ(sAIFont->GetFontFamilyName(key, buffer, 10), kBadParameterErr) << bits;
        EXPECT_EQ(sAIFont->FontFromFontKey(key, &font), kBadParameterErr) << bits;
    }
}

} // namespace
} // namespace host::test
