// SPDX-License-Identifier: MIT
// What is done in the window: in which order, to which fonts, and what is kept of it.
#include "manager/library/folders.h"
#include "manager/view/texts.h"
#include "tests/manager/qt/windowfixture.h"

#include <QFileDialog>
#include <QTimer>
#include <QUndoStack>

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

using namespace manager;

namespace managertest {

namespace {

class TheWindowsDeeds : public TheLibrarysWindow {
protected:
    void glyphoraTagged() {
        glyphora({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("mine"),
                  QStringLiteral("Beta")});
    }
    void chooseTag(const std::string& name) {
        ASSERT_TRUE(await([&] { return !window_->groups().empty(); }));
        window_->sidebar().choose({SidebarPlace::Kind::Group, {}, "tag:" + name});
        ASSERT_EQ(window_->model().rowCount(), 1);
    }
};

TEST_F(TheWindowsDeeds, AreUndoneInTheOrderInWhichTheyWereBegun) {
    glyphoraTagged();
    open();
    chooseTag("mine");
    choose(0);
    // A command takes longer than a change of a tag, which must not overtake it.
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Delete);
    press(Qt::Key_Z, Qt::ControlModifier); // the removal, once it is made
    const QUndoStack& stack = window_->deeds().undoStack();
    ASSERT_TRUE(finishDeeds());
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.text(0), QStringLiteral("activate Beta"));
    EXPECT_EQ(stack.text(1), QStringLiteral("remove from mine"));
    EXPECT_EQ(readGroups(sandbox_.places()).front().members.size(), 1U);
    EXPECT_TRUE(awaitHeard({{0, "Beta, 1 style, active"}}));
}

TEST_F(TheWindowsDeeds, AreDoneThoughItIsClosedMeanwhile) {
    glyphoraTagged();
    open();
    chooseTag("mine");
    choose(0);
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Delete);
    press(Qt::Key_Z, Qt::ControlModifier);
    window_->sidebar().setFocus();
    QTest::keyClick(&window_->sidebar(), Qt::Key_Delete); // the tag itself, the last of all
    window_.reset();
    EXPECT_TRUE(readGroups(sandbox_.places()).empty());
    open();
    EXPECT_EQ(heard(1), "Beta, 1 style, active");
}

TEST_F(TheWindowsDeeds, EndTheEditingOfANameWhereAnotherPlaceIsChosen) {
    open();
    choose(1);
    const auto makeTag = [this] {
        window_->list().setFocus();
        press(Qt::Key_T, Qt::ControlModifier);
        ASSERT_TRUE(await([] { return QApplication::activePopupWidget() != nullptr; }));
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_T); // New Tag
        QApplication::setActiveWindow(window_.get()); // as a display does when a menu goes
    };
    const auto names = [this] {
        std::vector<std::string> list;
        for (const Group& group : window_->groups()) {
            list.push_back(group.name);
        }
        return list;
    };
    Sidebar& sidebar = window_->sidebar();
    const auto editor = [] { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); };
    makeTag();
    ASSERT_TRUE(await([&] { return editor() != nullptr && sidebar.isAncestorOf(editor()); }));
    QTest::keyClicks(editor(), QStringLiteral("Mi"));
    glyphora({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("Else"),
              QStringLiteral("Beta")}); // nothing else tells the window of it
    ASSERT_TRUE(await([&] { return names().size() == 2; }));
    QTest::keyClicks(editor(), QStringLiteral("ne"));
    const SidebarPlace elsewhere{SidebarPlace::Kind::State, FaceState::Inactive, {}};
    sidebar.choose(elsewhere);
    EXPECT_TRUE(await([&] { return names() == std::vector<std::string>{"Else", "Mine"}; }));
    EXPECT_EQ(sidebar.place(), elsewhere);
    EXPECT_FALSE(sidebar.indexWidget(sidebar.currentIndex()));

    makeTag();
    sidebar.setCurrentIndex(sidebar.indexAbove(sidebar.currentIndex())); // before it is there
    const SidebarPlace above = sidebar.place();
    EXPECT_NE(above, elsewhere);
    EXPECT_TRUE(await([&] { return names().size() == 3; }));
    EXPECT_EQ(sidebar.place(), above);
}

TEST_F(TheWindowsDeeds, KeepASetChosenUntilItHasItsNewName) {
    glyphoraTagged();
    open();
    chooseTag("mine");
    std::optional<FileLock> scanning(sandbox_.places().scanLock()); // which is waited for
    press(Qt::Key_F5);
    Sidebar& sidebar = window_->sidebar();
    sidebar.setFocus();
    QTest::keyClick(&sidebar, Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("yours"));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    glyphora({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("else"),
              QStringLiteral("Beta")});
    ASSERT_TRUE(await([this] { return window_->groups().size() == 2; }));
    EXPECT_EQ(window_->model().rowCount(), 1);
    scanning.reset();
    ASSERT_TRUE(await([this] { return window_->groups().back().name == "yours"; }));
    EXPECT_EQ(sidebar.place().name, "tag:yours");
    EXPECT_EQ(window_->model().rowCount(), 1);
}

TEST_F(TheWindowsDeeds, CollectWhatIsChosenIntoAFolderForOutput) {
    open();
    choose(1);
    const std::string target = sandbox_.root() + "/to print";
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, &answer, [&] {
        if (auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget())) {
            answer.stop();
            dialog->selectFile(QString::fromStdString(target));
            static_cast<QDialog*>(dialog)->accept();
        }
    });
    answer.start(0);
    const QList<QAction*> actions = window_->list().actions();
    const auto collect = std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
        return action->text() == QString::fromUtf8("Collect for &Output…");
    });
    ASSERT_NE(collect, actions.end());
    (*collect)->trigger();
    EXPECT_TRUE(awaitTold({"1 font file copied to " + target + ", with a list of licences"}));
    std::vector<std::string> fonts;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(target)) {
        if (entry.path().extension() == ".ttf") {
            fonts.push_back(entry.path().filename());
        }
    }
    EXPECT_THAT(fonts, testing::ElementsAre("beta.ttf"));
}

TEST_F(TheWindowsDeeds, TakeAFolderOutOfTheLibraryAndUndoIt) {
    open();
    Sidebar& sidebar = window_->sidebar();
    const SidebarPlace folder{SidebarPlace::Kind::Folder, {}, sandbox_.library()};
    const auto haveRows = [this](int count) {
        return await([&] { return window_->model().rowCount() == count; });
    };
    sidebar.choose({});
    sidebar.setFocus();
    QTest::keyClick(&sidebar, Qt::Key_Delete);
    sidebar.choose(folder);
    QTest::keyClick(&sidebar, Qt::Key_Delete);
    EXPECT_TRUE(haveRows(0));
    EXPECT_TRUE(readFolders(sandbox_.places()).empty());
    EXPECT_EQ(window_->deeds().undoStack().count(), 1) << "of what is no folder";
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(haveRows(2));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(haveRows(0));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(haveRows(2));
    EXPECT_TRUE(finishDeeds());
}

TEST_F(TheWindowsDeeds, ReachTheMembersOfASetWhateverTheirNumbersAre) {
    sandbox_.write("aaa.ttf", testsupport::makeFont({"Aaa", "Regular", "Aaa-Regular"}));
    glyphora({QStringLiteral("scan")});
    glyphora({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("mine"),
              QStringLiteral("Aaa")});
    const ContainerId before = readGroups(sandbox_.places()).front().members.front().id;
    removeIndex();
    glyphora({QStringLiteral("scan")});
    open();
    chooseTag("mine");
    EXPECT_EQ(heard(0), "Aaa, 1 style, inactive");
    EXPECT_NE(window_->groups().front().members.front().id, before);
    window_->sidebar().setFocus();
    QTest::keyClick(&window_->sidebar(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{0, "Aaa, 1 style, active"}}));
    window_->sidebar().choose({});
    EXPECT_EQ(heard(1), "Alpha, 2 styles, inactive");
    EXPECT_EQ(heard(2), "Beta, 1 style, inactive");
}

TEST_F(TheWindowsDeeds, AreUndoneOnTheSameFontsWhateverTheirNumbersAre) {
    sandbox_.write("aaa.ttf", testsupport::makeFont({"Aaa", "Regular", "Aaa-Regular"}));
    glyphora({QStringLiteral("scan")}); // it gets the last number, and the first in a new index
    open();
    const auto activeNames = [this] {
        std::vector<std::string> names;
        for (const ActiveContainer& one :
             Activation(sandbox_.places()).active([](const auto&) {})) {
            names.push_back(one.name);
        }
        return names;
    };
    choose(0);
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(finishDeeds());
    ASSERT_EQ(window_->deeds().undoStack().count(), 1);
    ASSERT_THAT(activeNames(), testing::IsEmpty());
    removeIndex();
    glyphora({QStringLiteral("scan")});
    window_->deeds().redo();
    ASSERT_TRUE(finishDeeds());
    EXPECT_THAT(activeNames(), testing::ElementsAre("Aaa"))
        << window_->problems().text().toStdString();
    window_->deeds().undo();
    ASSERT_TRUE(finishDeeds());
    EXPECT_THAT(activeNames(), testing::IsEmpty());
}

TEST_F(TheWindowsDeeds, AreUndoneToWhatWasActiveBefore) {
    glyphoraTagged();
    glyphora({QStringLiteral("tag"), QStringLiteral("add"), QStringLiteral("mine"),
              QStringLiteral("Alpha")});
    open();
    glyphora({QStringLiteral("activate"), QStringLiteral("--for"), QStringLiteral("2h"),
              QStringLiteral("Alpha")});
    window_->sidebar().choose({SidebarPlace::Kind::Group, {}, "tag:mine"});
    window_->sidebar().setFocus();
    const auto reasons = [this] {
        std::vector<std::vector<Reason>> all;
        for (const ActiveContainer& one :
             Activation(sandbox_.places()).active([](const auto&) {})) {
            all.push_back(one.reasons);
        }
        return all;
    };
    const auto before = reasons();
    ASSERT_EQ(before.size(), 1U);
    QTest::keyClick(&window_->sidebar(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(finishDeeds());
    const auto all = reasons();
    EXPECT_EQ(all.size(), 2U);
    QTest::keyClick(&window_->sidebar(), Qt::Key_Backspace, Qt::ControlModifier);
    const struct {
        void (Deeds::*turn)();
        std::vector<std::vector<Reason>> expected;
    } turns[] = {{&Deeds::undo, all},
                 {&Deeds::undo, before},
                 {&Deeds::redo, all},
                 {&Deeds::redo, {}},
                 {&Deeds::undo, all}};
    for (const auto& [turn, expected] : turns) {
        (window_->deeds().*turn)();
        ASSERT_TRUE(finishDeeds());
        EXPECT_EQ(reasons(), expected) << window_->problems().text().toStdString();
    }
}

TEST_F(TheWindowsDeeds, LeaveWhatCanBeDoneAgainWhereNothingChanges) {
    open();
    const auto beta =
        static_cast<std::int32_t>(window_->model().listing().view().table.faces().back().container);
    const GroupTitle title{GroupKind::Tag, "Smith & Sons"};
    window_->groupDeeds().add(title, {{beta, {}}});
    window_->groupDeeds().rename(title, "else");
    window_->deeds().undo();
    window_->groupDeeds().add(title, {{beta, {}}}); // which it has
    ASSERT_TRUE(finishDeeds());
    const QUndoStack& stack = window_->deeds().undoStack();
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    EXPECT_EQ(stack.undoText(), QStringLiteral("add to Smith && Sons"));
}

TEST_F(TheWindowsDeeds, DoNotTurnRoundWhereUndoingFails) {
    open();
    const auto collection = [](const QStringList& arguments) {
        glyphora(QStringList{QStringLiteral("collection")} + arguments);
    };
    const auto isOnly = [this](const std::string& name) {
        return window_->groups().size() == 1 && window_->groups().front().name == name;
    };
    collection({QStringLiteral("add"), QStringLiteral("mine"), QStringLiteral("Beta")});
    ASSERT_TRUE(await([&] { return isOnly("mine"); }));
    window_->groupDeeds().rename({GroupKind::Collection, "mine"}, "yours");
    ASSERT_TRUE(await([&] { return isOnly("yours"); }));
    collection({QStringLiteral("rename"), QStringLiteral("yours"), QStringLiteral("theirs")});
    window_->deeds().undo(); // there is no "yours"
    ASSERT_TRUE(finishDeeds());
    collection({QStringLiteral("rename"), QStringLiteral("theirs"), QStringLiteral("yours")});
    window_->deeds().redo(); // it is done
    ASSERT_TRUE(finishDeeds());
    ASSERT_TRUE(await([&] { return isOnly("yours"); }));
    window_->deeds().undo();
    EXPECT_TRUE(await([&] { return isOnly("mine"); }));
}

} // namespace

} // namespace managertest
