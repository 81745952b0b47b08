// SPDX-License-Identifier: MIT
// Dialogs without a screen, answered by scripts; time is the test's.
#include "dialogfixture.h"
#include "host/adm/headlessview.h"
#include "host/adm/scripteduser.h"

#include <array>
#include <optional>

namespace host::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(AScript, IsReadLineByLine) {
    struct Case {
        const char* line;
        Answer::Kind kind;
        const char* text;
        std::int32_t number;
    };
    constexpr std::array cases{
        Case{"select none", Answer::Kind::SelectNone, "", 0},
        Case{" select  none of it \r", Answer::Kind::Select, "none of it", 0},
        Case{"also a # b", Answer::Kind::Also, "a # b", 0},
        Case{"choose \"A\"", Answer::Kind::Choose, "\"A\"", 0},
        Case{"expand\tA", Answer::Kind::Expand, "A", 0},
        Case{"collapse A", Answer::Kind::Collapse, "A", 0},
        Case{"press 12", Answer::Kind::Press, "", 12},
        Case{"double-click A", Answer::Kind::DoubleClick, "A", 0},
        Case{"wait for news", Answer::Kind::WaitForNews, "", 30},
        Case{"wait for news 5", Answer::Kind::WaitForNews, "", 5},
        Case{"wait for end 7", Answer::Kind::WaitForEnd, "", 7},
        Case{"undo", Answer::Kind::Undo, "", 0},
        Case{"redo", Answer::Kind::Redo, "", 0},
    };
    for (const Case& each : cases) {
        const auto answers = readAnswers("# comment\n\n" + std::string(each.line), "s");
        ASSERT_EQ(answers.size(), 1U) << each.line;
        EXPECT_EQ(answers[0].kind, each.kind) << each.line;
        EXPECT_EQ(answers[0].text, each.text);
        EXPECT_EQ(answers[0].number, each.number) << each.line;
        EXPECT_EQ(answers[0].place, "s:3");
    }
}

TEST(AScript, IsRefusedWithThePlaceOfWhatIsWrong) {
    const auto problemOf = [](auto read) -> std::string {
        try {
            static_cast<void>(read());
        } catch (const AnswersError& problem) {
            return problem.what();
        }
        return "none";
    };
    constexpr const char* number = "a number from 1 to 1000000 must follow";
    const std::pair<const char*, std::string> cases[] = {
        {"leap", "there is no command \"leap\""},
        {"selectA", "there is no command \"selectA\""},
        {"select", "select: the row's text is missing"},
        {"press", std::string("press: ") + number},
        {"press 0", std::string("press: ") + number},
        {"press 3x", std::string("press: ") + number},
        {"wait for end soon", std::string("wait for end: ") + number},
        {"wait for news 1000001", std::string("wait for news: ") + number}};
    for (const auto& [line, problem] : cases) {
        EXPECT_EQ(problemOf([&, text = line] {
                      return readAnswers(std::string("select A\n") + text, "s");
                  }),
                  "s:2: " + problem);
    }
    const testsupport::TemporaryFolder folder;
    for (const std::filesystem::path& file : {folder.path(), folder / "none"}) {
        EXPECT_EQ(problemOf([&] { return readAnswers(file); }), file.string() + ": cannot be read");
    }
}

/// A dialog with the rows A (with A1 and A2 below it), B and C, each drawn with a note, and with
/// the flat list "one", "one more".
class AScriptedUser : public DialogFixture {
protected:
    AScriptedUser() {
        Tree& tree = *dialog.item(7)->tree;
        tree.multiSelect = true;
        suite<ADMHierarchyListSuite>()->SetDrawProc(tree.top().handle, drawWithNote);
        suite<ADMHierarchyListSuite>()->SetTrackProc(tree.top().handle, track);
        suite<ADMHierarchyListSuite>()->SetMask(tree.top().handle, kADMButtonMask);
        for (const char* const text : {"A", "B", "C"}) {
            add(tree.top(), text);
        }
        for (const char* const text : {"A1", "A2"}) {
            add(dialogs.childrenOf(*tree.top().rows[0]), text);
        }
        for (const char* const text : {"one", "one more"}) {
            add(dialog.item(4)->tree->top(), text);
        }
        drawer = suite<ADMDrawerSuite>();
        entries = suite<ADMListEntrySuite4>();
        trackers = suite<ADMTrackerSuite>();
        clicked.clear();
    }
    ~AScriptedUser() override { dialogs.setView(&view); }

    void add(RowList& list, const char* text) {
        dialogs.insertRow(list, list.rows.size()).text = text;
    }

    static void drawWithNote(ADMListEntryRef entry, ADMDrawerRef on) {
        std::array<char, 16> text{};
        entries->GetText(entry, text.data(), text.size());
        const ADMPoint left{0, 0};
        const ADMPoint right{90, 0};
        drawer->DrawText(on, text.data(), &left);
        drawer->DrawText(on, "noted", &right);
    }
    static AIBoolean track(ADMListEntryRef entry, ADMTrackerRef tracker) {
        std::array<char, 16> text{};
        entries->GetText(entry, text.data(), text.size());
        std::uint32_t modifiers = 0;
        trackers->GetModifiers(tracker, &modifiers);
        clicked += text.data();
        clicked += modifiers == kADMDoubleClickModifier ? " twice" : " once ";
        return 0;
    }

    /// The item that ended the dialog.
    std::int32_t play(std::string_view script,
                      ScriptedUser::AtEnd atEnd = ScriptedUser::AtEnd::GiveUp) {
        user.emplace(dialogs, readAnswers(script, "s"), atEnd);
        headless.emplace(dialogs, *user, [this](std::uint32_t most) {
            waits.push_back(most);
            ticks += events.empty() ? most : most / 2;
            if (!events.empty()) {
                const std::function<void()> event = events.front();
                events.pop_front();
                event();
            }
        });
        dialogs.setView(&*headless);
        return run(ref);
    }

    /// The texts of the selected rows, the active one marked.
    std::string selection() {
        std::string result;
        for (const std::int32_t id : {7, 4}) {
            Tree& tree = *dialog.item(id)->tree;
            for (const Row* const row : tree.selected()) {
                result += (result.empty() ? "" : ", ") + row->text;
                result += row == tree.active() ? "*" : "";
            }
        }
        return result;
    }

    static inline const ADMDrawerSuite* drawer = nullptr;
    static inline const ADMListEntrySuite4* entries = nullptr;
    static inline const ADMTrackerSuite* trackers = nullptr;
    static inline std::string clicked;

    ADMDialogRef ref = create();
    Dialog& dialog = *dialogs.find(ref);
    std::optional<ScriptedUser> user;
    std::optional<HeadlessView> headless;
    std::vector<std::uint32_t> waits;
    std::deque<std::function<void()>> events; ///< each comes in the middle of a wait
};

TEST_F(AScriptedUser, SelectsRowsByTheirWords) {
    struct Case {
        const char* script;
        const char* selected;
        const char* error = nullptr;
    };
    constexpr std::array cases{
        Case{"select B, noted", "B*"},
        Case{"select A\nselect C", "C*"},
        Case{"select C\nalso A", "A*, C"},
        Case{"select C\nselect none", ""},
        Case{"select one", "one*"},
        Case{"choose one more", "one more*"},
        Case{"expand A\nselect A2", "A2*"},
        Case{"select A2", "", "s:1: the row \"A2\" is below a closed one"},
        Case{"expand A\ncollapse A\nselect A2", "", "s:3: the row \"A2\" is below a closed one"},
        Case{"select noted A", "", "s:1: there is no row \"noted A\""},
        Case{"choose A, noted", "", "s:1: there is no row \"A, noted\""},
        Case{"expand B", "", "s:1: there are no rows below that one"},
        Case{"select one\nalso one more", "one*", "s:2: list 4 lets one row be selected"},
    };
    for (const Case& each : cases) {
        frontend.errors.clear();
        for (const std::int32_t id : {7, 4}) {
            dialog.item(id)->tree->select({}, nullptr);
        }
        dialog.item(7)->tree->top().rows[0]->expanded = false;
        EXPECT_EQ(play(each.script), kADMCancelItemID);
        EXPECT_EQ(selection(), each.selected) << each.script;
        EXPECT_EQ(user->failed(), each.error != nullptr) << each.script;
        EXPECT_EQ(frontend.errors, each.error != nullptr ? std::vector<std::string>{each.error}
                                                         : std::vector<std::string>{});
    }
    dialog.item(7)->enabled = false;
    play("select A");
    EXPECT_EQ(frontend.errors.back(), "s:1: list 7 is disabled");
}

TEST_F(AScriptedUser, PressesButtonsThatCanBePressed) {
    EXPECT_EQ(play("press 1"), 1);
    EXPECT_FALSE(user->takeShown()[0].givenUp);
    dialog.item(1)->enabled = false;
    for (const auto& [script, error] : {std::pair{"press 1", "s:1: button 1 is disabled"},
                                        std::pair{"press 7", "s:1: there is no button 7"}}) {
        EXPECT_EQ(play(script), kADMCancelItemID);
        EXPECT_EQ(frontend.errors.back(), error);
        EXPECT_TRUE(user->takeShown()[0].givenUp);
        play("");
        EXPECT_FALSE(user->failed());
    }
}

TEST_F(AScriptedUser, DoubleClicksAsAMouseDoes) {
    play("double-click B");
    EXPECT_EQ(std::exchange(clicked, ""), "B once B twice");
    EXPECT_EQ(selection(), "B*");
    // But not on a row that its selection took away.
    static Dialogs* owning = nullptr;
    owning = &dialogs;
    suite<ADMDialogSuite>()->SetNotifyProc(ref, [](ADMDialogRef of, ADMNotifierRef) {
        Dialog& notified = *owning->find(of);
        owning->removeRow(notified.item(7)->tree->top(), 1);
        owning->endModal(notified, 1, false);
    });
    EXPECT_EQ(play("double-click B"), 1);
    EXPECT_EQ(clicked, "");
}

TEST_F(AScriptedUser, WaitsForNewsNoLongerThanItIsTold) {
    events = {[] {}, [&] { add(dialog.item(7)->tree->top(), "D"); }};
    EXPECT_EQ(play("wait for news\nselect D\npress 1"), 1);
    EXPECT_THAT(waits, ElementsAre(1800, 900)) << "the first was in vain";
    ticks = 0xFFFFFFF0U; // the clock wraps around meanwhile
    for (const char* const script : {"wait for news 2", "wait for end 2"}) {
        const std::uint32_t start = ticks;
        EXPECT_EQ(play(script), kADMCancelItemID);
        EXPECT_EQ(ticks - start, 120U);
        EXPECT_EQ(frontend.errors.back(), "s:1: nothing came for 2 s");
    }
}

TEST_F(AScriptedUser, HasWaitedWhenTheDialogEnds) {
    for (const char* const script :
         {"wait for news\npress 1", "wait for end\nwait for end\npress 1",
          "press 1\nwait for end\nwait for news\npress 1"}) {
        events = {[&] { dialogs.endModal(dialog, 1, false); }};
        EXPECT_EQ(play(script), 1) << script;
        EXPECT_EQ(run(ref), 1) << script;
        user->finish();
        EXPECT_FALSE(user->failed()) << script;
    }
}

TEST_F(AScriptedUser, AnswersTheInnermostDialogAndTheOuterOneAfterIt) {
    static std::function<void()> runInner;
    runInner = [this, inner = create("inner")] { run(inner); };
    dialog.item(3)->notify = [](ADMItemRef, ADMNotifierRef) { runInner(); };
    events = {[&] { dialogs.endModal(dialog, 7, false); }};
    EXPECT_EQ(play("press 3\npress 1\nwait for end"), 7);
    const std::vector<ShownDialog> shown = user->takeShown();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].title + " " + std::to_string(shown[0].ending.item), "Title 7");
    EXPECT_EQ(shown[1].title + " " + std::to_string(shown[1].ending.item), "inner 1");
    play("press 3\nselect X");
    EXPECT_THAT(frontend.errors, ElementsAre("s:2: there is no row \"X\""));
    for (const ShownDialog& each : user->takeShown()) {
        EXPECT_TRUE(each.givenUp) << each.title;
    }
    events = {[&] { dialogs.endModal(*dialogs.running().back(), 1, false); }};
    EXPECT_EQ(play("press 3\nwait for end\npress 1"), 1) << "the inner one has ended";
}

TEST_F(AScriptedUser, EndsWhatItGivesUpWhateverThePluginDoes) {
    dialog.item(2)->notify = [](ADMItemRef, ADMNotifierRef) {};
    EXPECT_EQ(play(""), kADMCancelItemID);
}

TEST_F(AScriptedUser, MayLeaveADialogToSomebodyElse) {
    events = {[&] { dialogs.press(*dialog.item(1)); }};
    EXPECT_EQ(play("", ScriptedUser::AtEnd::Leave), 1);
    EXPECT_THAT(waits, ElementsAre(DialogUser::forEver));
    EXPECT_EQ(play("press 9", ScriptedUser::AtEnd::Leave), kADMCancelItemID);
}

TEST_F(AScriptedUser, ReportsAnswersThatNoDialogCameFor) {
    play("press 1\npress 2");
    EXPECT_FALSE(user->failed());
    user->finish();
    EXPECT_TRUE(user->failed());
    EXPECT_THAT(frontend.errors, ElementsAre("s:2: no dialog was shown for this"));
}

TEST_F(AScriptedUser, EditsTheDrawingOnceItsDialogsHaveEnded) {
    std::string steps;
    const auto edit = [&] {
        user->edit([&] { return (steps += "undo ").size() <= 15; },
                   [&] { return !(steps += "redo ").empty(); });
    };
    play("undo");
    EXPECT_THAT(frontend.errors, ElementsAre("s:1: a dialog is open"));
    play("press 1\nwait for end\nundo\nredo\nundo\npress 1\nundo\nredo");
    edit();
    EXPECT_EQ(steps, "undo redo undo ") << "the next one is for a dialog";
    run(ref);
    edit();
    EXPECT_EQ(steps, "undo redo undo undo ");
    EXPECT_EQ(frontend.errors.back(), "s:7: nothing was replaced");
}

TEST_F(AScriptedUser, TellsWhatItSaw) {
    dialog.item(3)->enabled = false;
    dialog.item(1)->text = "Go";
    play("");
    const std::vector<ShownDialog> shown = user->takeShown();
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0].plugin, "owner");
    EXPECT_EQ(shown[0].title, "Title");
    std::string rows;
    for (const ShownDialog::Row& row : shown[0].rows) {
        rows += std::string(row.level, ' ') + row.words + "\n";
    }
    EXPECT_EQ(rows, "A, noted\n A1, noted\n A2, noted\nB, noted\nC, noted\none\none more\n");
    std::string buttons;
    for (const ShownDialog::Button& button : shown[0].buttons) {
        buttons += std::to_string(button.item) + button.text + (button.enabled ? " " : "- ");
    }
    EXPECT_EQ(buttons, "1Go 2 3- ");
    EXPECT_THAT(user->takeShown(), IsEmpty());
}

TEST_F(AScriptedUser, LetsTimersRunWhenTheyAreDue) {
    static std::vector<std::uint32_t> fired;
    static const std::uint32_t* now = nullptr;
    fired.clear();
    now = &ticks;
    handler = [](std::string_view caller, std::string_view, void*) {
        if (caller == "AI Timer") {
            fired.push_back(*now + 1000);
        }
        return kNoErr;
    };
    ADMTimerRef timer = nullptr;
    suite<ADMDialogSuite>()->CreateTimer(
        ref, 500,
        [](ADMDialogRef, ADMTimerRef) -> AIBoolean {
            fired.push_back(*now);
            return 1;
        },
        nullptr, &timer);
    AITimerHandle hosts = nullptr;
    suite<AITimerSuite>()->AddTimer(owner.ref(), "t", 40, &hosts);
    play("wait for end 1");
    EXPECT_THAT(fired, ElementsAre(30, 1040));
    EXPECT_THAT(waits, ElementsAre(30, 10, 20));
}

} // namespace
} // namespace host::test
