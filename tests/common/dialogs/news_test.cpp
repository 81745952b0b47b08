// SPDX-License-Identifier: MIT
// How news of the font library reach the dialog, and only the one that is open.
#include "dialogfixture.h"

#include "GLYNotifyHandler.h"
#include "MacGLYNotifyHandler.h"

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class TheNews : public ADialog {
protected:
    TheNews() { handler().start(); }
    ~TheNews() override { handler().end(); }

    static GLY::IGLYNotifyHandler& handler() {
        return *GLY::NotifiyHandlerFactory::getNotifyHandler(false);
    }
    OSErr announce() { return platform.handle(FourCharCode("FILC"), FourCharCode("FSBC")); }
};

TEST_F(TheNews, ComeByTheTimerOneAtATime) {
    run([&](host::Dialog& dialog) {
        sent();
        answer({{"Aa", 1, true}, {"Present", 1, true}});
        platform.post(GLY::libraryChangedName);
        platform.awaitAllNoticed();
        platform.post(GLY::libraryChangedName);
        platform.awaitAllNoticed();
        for (const std::size_t expected : {1U, 1U, 0U}) {
            pass(499);
            EXPECT_THAT(sent(), IsEmpty());
            pass(500);
            const std::vector<std::string> commands = sent();
            EXPECT_THAT(commands, SizeIs(expected));
            EXPECT_THAT(commands, Each(AllOf(HasSubstr("fontRequest"), HasSubstr("Aa-Regular"),
                                             HasSubstr("Present-Regular"))));
        }
        EXPECT_THAT(families(dialog), ElementsAre("Bb", "Cc"));
    });
}

TEST_F(TheNews, CloseTheDialogOnceNothingIsMissing) {
    const std::int32_t ended = run([&](host::Dialog& dialog) {
        select(dialog, {"Bb"});
        replaceBy(dialog, 1);
        answer({{"Aa", 1, true}, {"Bb", 1, true}, {"Cc", 1, true}, {"Present", 1, true}});
        EXPECT_FALSE(dialog.ending);
        announce();
        ASSERT_TRUE(dialog.ending);
        EXPECT_FALSE(dialog.ending->cancelled);
        EXPECT_THAT(rows(dialog), IsEmpty());
        announce(); // news that waited behind these
    });
    EXPECT_EQ(ended, kADMOKItemID);
    EXPECT_THAT(platform.delays, ElementsAre(200));
    EXPECT_THAT(documentFamilies(), ElementsAre("Aa", "Spare", "Cc", "Present"));
}

TEST_F(TheNews, LeaveWhatIsSelectedAndOpen) {
    run([&](host::Dialog& dialog) {
        dialogs.setExpanded(row(dialog, "Cc"), true);
        select(dialog, {"Bb", "Cc 1"});
        answer({{"Aa", 1, true}, {"Bb"}, {"Cc", 2, false, {"20", "21", "22"}}});
        announce();
        EXPECT_THAT(families(dialog), ElementsAre("Bb", "Cc"));
        EXPECT_TRUE(row(dialog, "Bb").selected && row(dialog, "Cc").expanded);
        EXPECT_FALSE(row(dialog, "Cc 1").selected);
        EXPECT_TRUE(row(dialog, "Cc 2").selected) << "it is found by its name";
    });
}

TEST_F(TheNews, LeaveTheChoiceThatIsBeingMade) {
    run([&](host::Dialog& dialog) {
        select(dialog, {"Bb"});
        expect([&](host::Dialog& inner) {
            announce();
            host::Tree& tree = *inner.item(3)->tree;
            dialogs.select(tree, {tree.top().rows[1].get()}, tree.top().rows[1].get());
            press(inner, kADMOKItemID);
        });
        press(dialog, replaceButton);
        EXPECT_EQ(fonts[1]->replaced, 1);
    });
}

TEST_F(TheNews, EndWithWhatRunsWithinTheDialog) {
    run([&](host::Dialog& dialog) {
        select(dialog, {"Bb"});
        answer({{"Aa", 1, true}, {"Bb", 1, true}, {"Cc", 1, true}, {"Present", 1, true}});
        expect([&](host::Dialog& inner) {
            announce();
            EXPECT_TRUE(inner.ending && inner.ending->cancelled);
        });
        press(dialog, replaceButton);
        EXPECT_TRUE(dialog.ending);
    });
    EXPECT_THAT(platform.delays, ElementsAre(200)) << "once";
}

TEST_F(TheNews, GoToTheOpenDialogAloneAndOnce) {
    const auto heard = [&] {
        sent();
        announce();
        return sent().size();
    };
    const auto cancel = [](host::Dialog& /*dialog*/) {};
    for (int i = 0; i < 3; ++i) {
        run(cancel); // before any news: the handler will register what has gone
    }
    run([&](host::Dialog& /*dialog*/) { EXPECT_EQ(heard(), 1U); });
    EXPECT_EQ(heard(), 0U);
    for (int i = 0; i < 2; ++i) { // the second one is there before the first one is let go
        run([&](host::Dialog& /*dialog*/) { EXPECT_EQ(heard(), 1U); });
    }
    run(cancel);
    EXPECT_EQ(heard(), 0U) << "the last one has registered and gone";
    EXPECT_EQ(heard(), 0U);
    run([&](host::Dialog& /*dialog*/) {
        EXPECT_EQ(heard(), 1U);
        run([&](host::Dialog& /*dialog*/) { EXPECT_EQ(heard(), 2U); });
        EXPECT_EQ(heard(), 1U);
    });
    EXPECT_EQ(heard(), 0U);
}

} // namespace
