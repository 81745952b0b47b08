// SPDX-License-Identifier: MIT
// What the buttons and a double click send, and what a replacement does.
#include "dialogfixture.h"
#include "tests/support/foldedreply.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A font of a command as "PSNAME CONTAINER", fonts divided by commas.
std::string fontsOf(const std::string& command) {
    std::string result;
    const testsupport::ReplyNode folded = testsupport::parseFolded(command);
    for (const testsupport::ReplyNode* const font : folded.all("font")) {
        const bool hasContainer = !font->all("containerID").empty();
        result += (result.empty() ? "" : ", ") + font->value("psName") +
                  (hasContainer ? " " + font->value("containerID") : "");
    }
    return result;
}

class TheActions : public ADialog {
protected:
    TheActions() {
        answer({{"Aa", 1, false, {}, "TT", "11"},
                {"Bb", 1, false, {}, "TT", "12"},
                {"Cc", 2, false, {"21", "22"}, "TT", "13"}});
    }
};

TEST_F(TheActions, SendTheirRequests) {
    using Names = std::vector<std::string>;
    struct Case {
        Names selected;
        DialogItem button;
        const char* command;
        const char* fonts;
        const char* active = "";
    };
    const Case cases[] = {
        {{"Aa"}, showButton, "showRequest", "Aa-Regular"},
        {{"Bb", "Cc 1"}, showButton, "showRequest", "Bb-Regular, Cc-Regular 22"},
        {{"Bb"}, buyButton, "buyRequest", "Bb-Regular"},
        {{"Cc 0"}, buyButton, "buyRequest", "Cc-Regular"},
        {{"Aa"}, buyButton, "buyRequest", "Bb-Regular", "Bb"},
        {{}, activateButton, "activationRequest", "Aa-Regular 11, Bb-Regular 12, Cc-Regular 13"},
        {{"Aa", "Cc 1"}, activateButton, "activationRequest", "Aa-Regular 11, Cc-Regular 22"},
    };
    run([&](host::Dialog& dialog) {
        sent();
        platform.processes.clear();
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.command) + " " + c.fonts);
            select(dialog, c.selected, c.active);
            for (const auto& info : fonts) {
                info->chosenContainer = "99";
            }
            platform.answers[0].effect = [] {
                EXPECT_EQ(ThreadEndCritical(), noErr) << "within the critical section";
                ThreadBeginCritical();
            };
            press(dialog, c.button);
            platform.answers[0].effect = {};
            const std::vector<std::string> commands = sent();
            ASSERT_EQ(commands.size(), 1U);
            EXPECT_THAT(commands[0], testing::StartsWith("<cmd>" + std::string(c.command)));
            EXPECT_EQ(fontsOf(commands[0]), c.fonts);
            EXPECT_THAT(std::exchange(platform.lookUps, {}), SizeIs(3)) << "for a launcher";
            EXPECT_EQ(item(dialog, fontListItem).tree->selected().size(), c.selected.size())
                << "the new rows are selected as the old ones were";
        }
        EXPECT_EQ(fonts[0]->chosenContainer, "11");
    });
}

TEST_F(TheActions, ChooseAnyContainerForAllFonts) {
    run([&](host::Dialog& dialog) {
        press(dialog, activateButton);
        for (const auto& info : fonts) {
            EXPECT_EQ(info->chosenContainer, info->font.isActive ? "" : "-1");
        }
    });
}

TEST_F(TheActions, ShowWhatIsDoubleClicked) {
    run([&](host::Dialog& dialog) {
        const std::pair<const char*, const char*> cases[] = {{"Aa", "Aa-Regular"},
                                                             {"Cc 0", "Cc-Regular 21"}};
        sent();
        platform.processes.clear();
        for (const auto& [name, expected] : cases) {
            dialogs.click(row(dialog, name), false);
            EXPECT_THAT(sent(), IsEmpty());
            dialogs.click(row(dialog, name), true);
            const std::vector<std::string> commands = sent();
            ASSERT_EQ(commands.size(), 1U);
            EXPECT_THAT(commands[0], HasSubstr("showRequest"));
            EXPECT_EQ(fontsOf(commands[0]), expected);
            EXPECT_THAT(std::exchange(platform.lookUps, {}), SizeIs(3)) << "for a launcher";
        }
        EXPECT_EQ(fonts[0]->chosenContainer, "-1");
        EXPECT_EQ(item(dialog, fontListItem).tree->mask, 0x80000004);
        EXPECT_EQ(dialog.mask, 0x80000000);
    });
}

TEST_F(TheActions, LeaveTheTrackingToTheHostFirst) {
    static int tracked = 0;
    struct Hooked : GlyphoraDialog {
        ADMErr Init() override {
            ADMHierarchyListRef list = nullptr;
            sADMItem->GetHierarchyList(GetItem(fontListItem), &list);
            sADMHierarchyList->SetTrackProc(list, [](ADMListEntryRef, ADMTrackerRef) {
                ++tracked;
                return AIBoolean{1};
            });
            return GlyphoraDialog::Init();
        }
    } glyphora;
    run(glyphora, [&](host::Dialog& dialog) {
        dialogs.click(row(dialog, "Aa"), false);
        EXPECT_EQ(tracked, 1);
    });
}

class TheReplacements : public TheActions {};

TEST_F(TheReplacements, AreMadeByOkAndNotByCancel) {
    for (const std::int32_t button : {kADMCancelItemID, kADMOKItemID}) {
        for (const auto& info : fonts) {
            info->replaced = 0;
        }
        EXPECT_EQ(run([&](host::Dialog& dialog) {
                      select(dialog, {"Aa", "Cc"});
                      replaceBy(dialog, 1);
                      EXPECT_EQ(row(dialog, "Cc").children, nullptr);
                      EXPECT_EQ(infoOf(row(dialog, "Aa")).replaced, 1);
                      EXPECT_EQ(infoOf(row(dialog, "Bb")).replaced, 0);
                      EXPECT_THAT(documentFamilies(), ElementsAre("Aa", "Bb", "Cc", "Present"));
                      sent();
                      select(dialog, {});
                      press(dialog, activateButton);
                      EXPECT_EQ(fontsOf(sent().at(0)), "Bb-Regular 12") << "the others are settled";
                      press(dialog, button);
                  }),
                  button);
    }
    EXPECT_THAT(documentFamilies(), ElementsAre("Spare", "Bb", "Spare", "Present"));
}

TEST_F(TheReplacements, AreNoneWhenNothingIsChosen) {
    run([&](host::Dialog& dialog) {
        select(dialog, {"Aa"});
        expect([&](host::Dialog& inner) { press(inner, kADMOKItemID); });
        press(dialog, replaceButton);
        EXPECT_EQ(fonts[0]->replaced, 0);
        press(dialog, kADMOKItemID);
    });
    EXPECT_THAT(documentFamilies(), ElementsAre("Aa", "Bb", "Cc", "Present"));
}

TEST_F(TheReplacements, AreAgainTheLastChoiceWhenAnotherIsCancelled) {
    run([&](host::Dialog& dialog) {
        select(dialog, {"Aa"});
        replaceBy(dialog, 1);
        select(dialog, {"Bb"});
        expect([](host::Dialog&) {});
        press(dialog, replaceButton);
        press(dialog, kADMOKItemID);
    });
    EXPECT_THAT(documentFamilies(), ElementsAre("Spare", "Spare", "Cc", "Present"));
}

} // namespace
