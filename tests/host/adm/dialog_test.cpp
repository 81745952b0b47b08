// SPDX-License-Identifier: MIT
// Dialogs: made, run one within another, told of the user, timed, and ended.
#include "dialogfixture.h"

#include <array>
#include <new>
#include <stdexcept>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// What the routines of a test were called with.
std::vector<std::string> heard;

class ADialog : public DialogFixture {
protected:
    ADialog() {
        heard.clear();
        notifierSuite = suite<ADMNotifierSuite>();
        itemSuite = suite<ADMItemSuite>();
        dialogSuite = suite<ADMDialogSuite>();
    }

    // For routines, which are functions without a state.
    static inline const ADMNotifierSuite* notifierSuite = nullptr;
    static inline const ADMItemSuite* itemSuite = nullptr;
    static inline const ADMDialogSuite* dialogSuite = nullptr;
};

TEST_F(ADialog, IsInitialisedOnceWithTheDataOfItsCreator) {
    int calls = 0;
    const ADMDialogRef ref = create(
        "Title",
        [](ADMDialogRef, void* data) -> ADMErr {
            ++*static_cast<int*>(data);
            return kNoErr;
        },
        &calls);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(run(ref, [&](Dialog& dialog) { dialogs.press(*dialog.item(1)); }), 1);
    EXPECT_EQ(calls, 1);
}

TEST_F(ADialog, IsNotMadeOfWhatIsWrong) {
    const auto fails = [](ADMDialogRef, void*) -> ADMErr { return FourChars("OOPS"); };
    const auto throws = [](ADMDialogRef, void*) -> ADMErr { throw std::runtime_error("init"); };
    ADMDialogRef ref = nullptr;
    const auto result = [&](SPPluginRef plugin, std::int32_t layout, std::int32_t style,
                            ADMDialogInitProc init) {
        return dialogSuite->Create(plugin, "name", layout, style, init, nullptr, 0, &ref);
    };
    EXPECT_EQ(result(owner.ref(), 1, 0, fails), FourChars("OOPS"));
    EXPECT_EQ(result(owner.ref(), 1, 0, throws), kBadParameterErr);
    EXPECT_EQ(result(owner.ref(), 1, 5, nullptr), kBadParameterErr);
    EXPECT_EQ(result(nullptr, 1, 0, nullptr), kBadParameterErr);
    EXPECT_THAT(frontend.errors, IsEmpty());
    EXPECT_EQ(result(owner.ref(), 2, 0, nullptr), kBadParameterErr);
    EXPECT_EQ(ref, nullptr);
    EXPECT_THAT(frontend.errors, ElementsAre(testing::HasSubstr("2.ui")));
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("owner threw an exception out of a routine of a dialog"));
    EXPECT_THAT(view.forgotten, ElementsAre("Title", "Title"));
}

TEST_F(ADialog, EndsByItsFirstTwoButtonsUnlessTheyAreDisabled) {
    const ADMDialogRef ref = create();
    for (const std::int32_t id : {1, 2}) {
        EXPECT_EQ(run(ref,
                      [&](Dialog& dialog) {
                          Item& item = *dialog.item(id);
                          dialogs.press(*dialog.item(3));
                          item.enabled = false;
                          dialogs.press(item);
                          EXPECT_FALSE(dialog.ending);
                          item.enabled = true;
                          dialogs.press(item);
                          EXPECT_EQ(dialog.ending->cancelled, id == 2);
                      }),
                  id);
    }
    EXPECT_EQ(run(ref, [&](Dialog& dialog) { dialogs.giveUp(dialog); }), 2);
    EXPECT_EQ(run(ref,
                  [&](Dialog& dialog) {
                      dialog.item(2)->enabled = false;
                      dialogs.giveUp(dialog);
                      EXPECT_TRUE(dialog.ending->cancelled);
                  }),
              2);
}

TEST_F(ADialog, RunsWithinAnotherAndEndsBeforeIt) {
    const ADMDialogRef outer = create("outer");
    const ADMDialogRef inner = create("inner");
    const std::int32_t item = run(outer, [&](Dialog& dialog) {
        const std::int32_t innerItem = run(inner, [&](Dialog&) {
            dialogs.press(*dialog.item(1)); // the outer one cannot be reached
            dialogs.giveUp(dialog);
            EXPECT_THAT(view.ended, IsEmpty());
            std::int32_t none = 0;
            EXPECT_EQ(dialogSuite->DisplayAsModal(outer, &none), kBadParameterErr);
            EXPECT_EQ(dialogSuite->Destroy(outer), kBadParameterErr);
            EXPECT_EQ(dialogSuite->EndModal(outer, 7, 0), kNoErr);
            EXPECT_EQ(dialogSuite->EndModal(outer, 1, 0), kNoErr);
        });
        EXPECT_EQ(innerItem, kADMCancelItemID);
    });
    EXPECT_EQ(item, 7);
    EXPECT_THAT(view.ended, ElementsAre("inner", "outer"));
    EXPECT_THAT(dialogs.running(), IsEmpty());
}

TEST_F(ADialog, ThatEndedBeforeItRanIsNotShown) {
    const ADMDialogRef ref = create();
    dialogSuite->EndModal(ref, 3, 0);
    EXPECT_EQ(run(ref), 3);
    EXPECT_THAT(view.shown, IsEmpty());
    dialogs.setView(nullptr);
    EXPECT_EQ(run(ref), kADMCancelItemID) << "without a view nobody can end it";
}

TEST_F(ADialog, HearsOfItsItemsThroughTheirRoutines) {
    const ADMDialogRef ref = create();
    dialogSuite->SetNotifyProc(ref, [](ADMDialogRef dialog, ADMNotifierRef notifier) {
        std::array<char, 64> type{};
        ADMItemRef item = nullptr;
        notifierSuite->GetNotifierType(notifier, type.data(), type.size());
        notifierSuite->GetItem(notifier, &item);
        std::int32_t id = 0;
        itemSuite->GetID(item, &id);
        heard.push_back(std::string(type.data()) + " " + std::to_string(id));
        dialogSuite->DefaultNotify(dialog, notifier);
    });
    ADMItemRef item = nullptr;
    EXPECT_EQ(dialogSuite->GetItem(ref, 9, &item), kBadParameterErr);
    EXPECT_EQ(dialogSuite->GetItem(ref, 3, &item), kNoErr);
    itemSuite->SetNotifyProc(item, [](ADMItemRef, ADMNotifierRef) { heard.emplace_back("3"); });
    EXPECT_EQ(run(ref,
                  [&](Dialog& dialog) {
                      dialogs.press(*dialog.item(3));
                      dialogs.press(*dialog.item(1));
                  }),
              1);
    EXPECT_THAT(heard, ElementsAre("3", "ADM User Changed Notifier 1"));
}

TEST_F(ADialog, IsEndedByARoutineOrAViewThatThrows) {
    const ADMDialogRef ref = create();
    view.runs.push_back([](Dialog&) { throw std::bad_alloc(); });
    std::int32_t none = 0;
    EXPECT_EQ(dialogSuite->DisplayAsModal(ref, &none), kOutOfMemoryErr);
    EXPECT_THAT(dialogs.running(), IsEmpty());
    EXPECT_EQ(run(ref, [&](Dialog& dialog) { dialogs.press(*dialog.item(1)); }), 1);
    dialogSuite->SetNotifyProc(
        ref, [](ADMDialogRef, ADMNotifierRef) { throw std::runtime_error("notify"); });
    EXPECT_EQ(run(ref, [&](Dialog& dialog) { dialogs.press(*dialog.item(3)); }), kADMCancelItemID);
    EXPECT_THAT(frontend.misbehaviour,
                ElementsAre("owner threw an exception out of a routine of a dialog"));
}

TEST_F(ADialog, KeepsWhatItIsTold) {
    const ADMDialogRef ref = create();
    const ADMRect bounds{-500, -500, 0, 0};
    EXPECT_EQ(dialogSuite->SetBoundsRect(ref, &bounds), kNoErr);
    EXPECT_EQ(dialogSuite->Show(ref, 0), kNoErr);
    EXPECT_EQ(dialogSuite->ForceOnScreen(ref, 0), kNoErr);
    EXPECT_EQ(dialogSuite->SetUserData(ref, this), kNoErr);
    void* data = nullptr;
    EXPECT_EQ(dialogSuite->GetUserData(ref, &data), kNoErr);
    EXPECT_EQ(data, this);
    ADMItemRef item = nullptr;
    EXPECT_EQ(dialogSuite->GetItem(ref, 8, &item), kNoErr);
    EXPECT_EQ(itemSuite->SetText(item, "words"), kNoErr);
    EXPECT_EQ(itemSuite->Enable(item, 0), kNoErr);
    EXPECT_EQ(itemSuite->SetItemStyle(item, kADMMultiSelectListStyle), kBadParameterErr);
    ADMListRef list = nullptr;
    EXPECT_EQ(itemSuite->GetList(item, &list), kBadParameterErr);
    const Dialog& dialog = *dialogs.find(ref);
    EXPECT_EQ(dialog.bounds.left, -500);
    EXPECT_FALSE(dialog.visible || dialog.forcedOnScreen);
    EXPECT_EQ(dialogs.find(ref)->item(8)->text, "words");
    EXPECT_FALSE(dialogs.find(ref)->item(8)->enabled);
}

TEST_F(ADialog, TimesItselfWhileItRuns) {
    const ADMDialogRef ref = create();
    ADMTimerRef timer = nullptr;
    const auto add = [&](std::int32_t milliseconds, ADMTimerProc proc) {
        return dialogSuite->CreateTimer(
            ref, milliseconds, proc,
            [](ADMDialogRef, ADMTimerRef) { heard.emplace_back("aborted"); }, &timer);
    };
    EXPECT_EQ(add(0, [](ADMDialogRef, ADMTimerRef) { return AIBoolean{1}; }), kBadParameterErr);
    EXPECT_EQ(add(500, nullptr), kBadParameterErr);
    EXPECT_EQ(add(500,
                  [](ADMDialogRef, ADMTimerRef) {
                      heard.emplace_back("again");
                      return AIBoolean{1};
                  }),
              kNoErr);
    EXPECT_EQ(add(1000,
                  [](ADMDialogRef, ADMTimerRef) {
                      heard.emplace_back("once");
                      return AIBoolean{0};
                  }),
              kNoErr);
    EXPECT_EQ(dialogs.ticksToNextTimer(), 30U);
    const auto heardAt = [&](std::uint32_t tick) {
        heard.clear();
        ticks = tick;
        const std::size_t count = dialogs.runTimers();
        EXPECT_EQ(count, heard.size());
        return heard;
    };
    run(ref, [&](Dialog& dialog) {
        EXPECT_THAT(heardAt(29), IsEmpty());
        EXPECT_EQ(dialogs.ticksToNextTimer(), 1U);
        EXPECT_THAT(heardAt(30), ElementsAre("again"));
        EXPECT_THAT(heardAt(60), ElementsAre("again", "once"));
        EXPECT_THAT(heardAt(120), ElementsAre("again"));
        dialogs.giveUp(dialog);
        EXPECT_THAT(heardAt(150), IsEmpty()) << "after the end";
    });
    EXPECT_THAT(heardAt(180), IsEmpty()) << "while it does not run";
    dialogSuite->Destroy(ref);
    EXPECT_THAT(heard, ElementsAre("aborted"));
    const auto never = [](ADMDialogRef, ADMTimerRef) { return AIBoolean{0}; };
    EXPECT_EQ(dialogSuite->CreateTimer(create(), 17, never, nullptr, &timer), kNoErr);
    EXPECT_EQ(dialogs.ticksToNextTimer(), 2U) << "it is rounded up";
}

TEST_F(ADialog, IsTakenBackFromAPluginThatLeaves) {
    const ADMDialogRef ref = create();
    serving.reset();
    owner.shutDown();
    EXPECT_EQ(dialogs.find(ref), nullptr);
    EXPECT_THAT(frontend.misbehaviour, ElementsAre("owner left 1 dialog(s) undestroyed"));
    EXPECT_THAT(view.forgotten, ElementsAre("Title"));
}

TEST_F(ADialog, DiesWithItsItemsAndIsNotFollowedThen) {
    const ADMDialogRef ref = create();
    ADMItemRef item = nullptr;
    EXPECT_EQ(dialogSuite->GetItem(ref, 7, &item), kNoErr);
    EXPECT_EQ(dialogSuite->Destroy(ref), kNoErr);
    EXPECT_EQ(dialogSuite->Destroy(ref), kBadParameterErr);
    EXPECT_EQ(dialogSuite->SetText(ref, "title"), kBadParameterErr);
    EXPECT_EQ(itemSuite->Enable(item, 1), kBadParameterErr);
    EXPECT_EQ(dialogSuite->GetItem(nullptr, 7, &item), kBadParameterErr);
    serving.reset();
    EXPECT_EQ(dialogSuite->SetText(ref, "title"), kNotRunningErr) << "outside messages";
}

} // namespace
} // namespace host::test
