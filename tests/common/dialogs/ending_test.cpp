// SPDX-License-Identifier: MIT
// How the dialog ends: out of sight, by what goes wrong in it, and with nothing left behind.
#include "ai/unicodestring.h"
#include "dialogfixture.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

namespace {

using TheUnattendedDialog = ADialog;

TEST_F(TheUnattendedDialog, StaysOutOfSightForFifteenSeconds) {
    answer({{"Aa", 1}}, 0);
    GlyphoraDialog glyphora;
    glyphora.setFontData(fonts);
    glyphora.InitFonts();
    EXPECT_EQ(run(glyphora,
                  [&](host::Dialog& dialog) {
                      EXPECT_FALSE(dialog.visible);
                      EXPECT_FALSE(dialog.forcedOnScreen);
                      EXPECT_EQ(dialog.bounds.left, -500);
                      EXPECT_EQ(dialog.bounds.top, -500);
                      EXPECT_EQ(dialog.bounds.right, 0);
                      EXPECT_EQ(dialog.bounds.bottom, 0);
                      press(dialog, kADMOKItemID);
                      EXPECT_FALSE(dialog.ending) << "nobody is there to press anything";
                      pass(14'900);
                      EXPECT_FALSE(dialog.ending);
                      pass(100);
                      EXPECT_TRUE(dialog.ending);
                      dialog.ending.reset();
                      pass(15'000);
                      EXPECT_FALSE(dialog.ending) << "once";
                      dialogs.endModal(dialog, kADMOKItemID, false);
                  }),
              kADMOKItemID);
}

TEST_F(TheUnattendedDialog, IsAskedForByTheFontManagerAlone) {
    const auto isVisible = [this](bool answered, int showWindow) {
        answer({{"Aa", 1}}, showWindow);
        GlyphoraDialog glyphora;
        glyphora.setFontData(fonts);
        if (!answered) {
            platform.answers = {scripted::failedAnswer(procNotFound)};
        }
        glyphora.InitFonts();
        answer({{"Aa", 1}}, showWindow);
        bool visible = false;
        run(glyphora, [&](host::Dialog& dialog) {
            visible = dialog.visible;
            dialogs.endModal(dialog, kADMOKItemID, false);
        });
        return visible;
    };
    EXPECT_TRUE(isVisible(true, 1));
    EXPECT_FALSE(isVisible(true, 0));
    EXPECT_TRUE(isVisible(false, 0));
}

TEST_F(TheUnattendedDialog, IsNotWhatTheFontCheckOpens) {
    answer({{"Aa", 0}}, 0);
    serving.reset();
    expect([](host::Dialog& dialog) { EXPECT_TRUE(dialog.visible); });
    EXPECT_EQ(application.announceOpened(), kNoErr);
}

/// An answer that cannot be read.
scripted::Answer badAnswer() {
    return scripted::textAnswer("<cmd>answer</cmd>\n<protocolVersion>2.0</protocolVersion>\n"
                                "<font><count>abc</count></font>\n</cmd>\n");
}

class AFailure : public ADialog {
protected:
    /// What the font check comes to, with what it printed.
    std::pair<SPErr, std::string> check(User user) {
        serving.reset();
        expect(std::move(user));
        CaptureStdout();
        const SPErr error = application.announceOpened();
        EXPECT_THAT(dialogs.running(), IsEmpty());
        frontend.errors.clear();
        frontend.misbehaviour.clear();
        return {error, GetCapturedStdout()};
    }
    static testing::Matcher<std::string> printsTheFailure() {
        return testing::AllOf(testing::StartsWith("ERROR:"),
                              HasSubstr("could not parse <count> 'abc'"));
    }
};

TEST_F(AFailure, OfLaterNewsEndsTheDialogAndComesOutOfTheCheck) {
    const scripted::Answer good = platform.answers[0];
    for (const bool byEvent : {false, true}) {
        platform.answers = {good};
        const auto [error, printed] = check([&](host::Dialog& dialog) {
            platform.answers = {badAnswer()};
            if (byEvent) {
                platform.handle(FourCharCode("FILC"), FourCharCode("FSBC"));
            } else {
                platform.post("org.glyphora.Glyphora.FontLibraryChanged");
                platform.awaitAllNoticed();
                pass(500);
            }
            EXPECT_TRUE(dialog.ending && dialog.ending->cancelled);
            pass(500);
        });
        EXPECT_EQ(error, kUnhandledMsgErr);
        EXPECT_THAT(printed, printsTheFailure());
    }
}

TEST_F(AFailure, WithinTheInnerDialogEndsBoth) {
    host::CallSite* const site = host::CallSite::find("ADM Item Suite", "GetList");
    const auto [error, printed] = check([&](host::Dialog& dialog) {
        select(dialog, {"Aa"});
        expect([&](host::Dialog& inner) {
            site->failWith(kBadParameterErr);
            press(inner, kADMOKItemID);
            EXPECT_TRUE(inner.ending && inner.ending->cancelled);
        });
        press(dialog, replaceButton);
        EXPECT_TRUE(dialog.ending && dialog.ending->cancelled);
    });
    site->failWith(kNoErr);
    EXPECT_THAT(printed, testing::StartsWith("ERROR:"));
}

TEST_F(AFailure, ToReplaceIsTheHostsError) {
    const auto [error, printed] = check([&](host::Dialog& dialog) {
        select(dialog, {"Aa"});
        replaceBy(dialog, 1);
        faces.pop_back();
        application.refreshFonts();
        press(dialog, kADMOKItemID);
        EXPECT_TRUE(dialog.ending && dialog.ending->cancelled);
    });
    EXPECT_EQ(error, kNoSuchFontErr);
    EXPECT_EQ(printed, "") << "it is no standard exception";
    EXPECT_THAT(documentFamilies(), ElementsAre("Aa", "Bb", "Cc", "Present"));
}

// The calls by which rows are taken back must succeed.
TEST_F(AFailure, OfTheHostLeavesNothingBehind) {
    const std::pair<const char*, const char*> calls[] = {
        {"ADM Hierarchy List Suite", "GetTrackProc"},
        {"ADM Hierarchy List Suite", "InsertEntry"},
        {"ADM Hierarchy List Suite", "RemoveEntry"},
        {"ADM Hierarchy List Suite", "NumberOfSelectedEntries"},
        {"ADM Hierarchy List Suite", "GetActiveEntry"},
        {"ADM List Entry Suite", "SetUserData"},
        {"ADM List Entry Suite", "CreateChildList"},
        {"ADM Item Suite", "GetList"},
        {"ADM Item Suite", "GetID"},
        {"ADM Item Suite", "SetText"},
        {"ADM Dialog Suite", "Create"},
        {"ADM Dialog Suite", "CreateTimer"},
        {"ADM Dialog Suite", "DisplayAsModal"},
        {"ADM Notifier Suite", "GetItem"},
    };
    for (const auto& [suite, call] : calls) {
        host::CallSite* const site = host::CallSite::find(suite, call);
        ASSERT_NE(site, nullptr) << call;
        for (const std::uint64_t from : {1U, 3U}) {
            SCOPED_TRACE(std::string(call) + " " + std::to_string(from));
            const std::uint64_t failing = site->count() + from;
            site->failWith(kBadParameterErr, failing);
            try {
                run([&](host::Dialog& dialog) {
                    select(dialog, {"Aa"});
                    press(dialog, buyButton);
                    expect([](host::Dialog&) {});
                    press(dialog, replaceButton);
                });
            } catch (const ai::Error& failure) {
                EXPECT_EQ(failure.error, kBadParameterErr);
            }
            EXPECT_TRUE(from > 1 || site->count() >= failing) << "it was not called";
            site->failWith(kNoErr);
            view.runs.clear(); // not all of them were opened
            EXPECT_THAT(dialogs.running(), IsEmpty());
        }
    }
}

} // namespace
