// SPDX-License-Identifier: MIT
// What is done in the window: in which order, to which fonts, and what is kept of it.
#include "manager/view/texts.h"
#include "tests/manager/qt/windowfixture.h"

#include <QUndoStack>

#include <gmock/gmock.h>

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
    ASSERT_TRUE(await([&] { return stack.count() == 2 && stack.index() == 1; }));
    EXPECT_EQ(stack.text(0), QStringLiteral("activate Beta"));
    EXPECT_EQ(stack.text(1), QStringLiteral("remove from mine"));
    EXPECT_TRUE(await([this] { return window_->groups().front().members.size() == 1; }));
    EXPECT_TRUE(await([this] { return heard(0) == "Beta, 1 style, active"; })) << heard(0);
}

TEST_F(TheWindowsDeeds, AreDoneThoughItIsClosedMeanwhile) {
    glyphoraTagged();
    open();
    chooseTag("mine");
    choose(0);
    press(Qt::Key_Return, Qt::ControlModifier);
    press(Qt::Key_Delete);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    window_.reset();
    EXPECT_TRUE(readGroups(sandbox_.places()).front().members.empty());
}

} // namespace

} // namespace managertest
