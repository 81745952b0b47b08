// SPDX-License-Identifier: MIT
// What the window keeps from one run to the next.
#include "tests/manager/qt/windowfixture.h"

#include <QComboBox>
#include <QLabel>
#include <QSettings>
#include <QStatusBar>
#include <QToolButton>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace manager;
using namespace managertest;

namespace {

class AWindowOpenedAgain : public TheLibrarysWindow {
protected:
    AWindowOpenedAgain() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromStdString(sandbox_.root() + "/config"));
    }
    void openAgain(const WindowRequest& request = {}) {
        window_->close();
        window_.reset();
        open(request);
    }
    std::string file_ = sandbox_.root() + "/config/glyphora/library.conf";
};

TEST_F(AWindowOpenedAgain, IsAsItWasLeft) {
    open();
    const SidebarPlace inactive{SidebarPlace::Kind::State, FaceState::Inactive, {}};
    window_->list().setExpanded(window_->model().index(1, 0), true);
    window_->list().setExpanded(window_->model().index(0, 0), true);
    window_->sidebar().choose(inactive);
    window_->filters().set(FilterKind::Slant, "0");
    window_->searchField().setText(QStringLiteral("a"));
    window_->list().setExpanded(window_->model().index(0, 0), false);
    FacePane& pane = window_->pane();
    pane.sampleField().setText(QStringLiteral("Größe, \"x\""));
    pane.paperBox().setCurrentIndex(2);
    pane.views().setCurrentIndex(1);
    pane.lookButton().setChecked(true);
    choose(1);

    openAgain();
    EXPECT_EQ(window_->sidebar().place(), inactive);
    EXPECT_EQ(window_->searchField().text(), QStringLiteral("a"));
    EXPECT_EQ(window_->filters().values(), (FilterValues{{FilterKind::Slant, "0"}}));
    EXPECT_FALSE(window_->filters().button().isChecked());
    EXPECT_FALSE(window_->list().isExpanded(window_->model().index(0, 0)));
    EXPECT_TRUE(window_->list().isExpanded(window_->model().index(1, 0)));
    EXPECT_EQ(window_->list().currentIndex(), window_->model().index(1, 0));
    EXPECT_EQ(window_->pane().sampleField().text(), QStringLiteral("Größe, \"x\""));
    EXPECT_EQ(window_->pane().paperBox().currentIndex(), 2);
    EXPECT_EQ(window_->pane().views().currentIndex(), 1);
    EXPECT_TRUE(window_->pane().lookButton().isChecked());

    openAgain({.search = "beta"}); // which nothing of before may hide
    EXPECT_EQ(window_->sidebar().place(), SidebarPlace());
    EXPECT_TRUE(window_->filters().values().empty());
    EXPECT_EQ(heard(0), "Beta, 1 style, inactive");
}

TEST_F(AWindowOpenedAgain, BeginsAsNewWhereItsSettingsMeanNothing) {
    const struct {
        std::string settings;
        bool isTold;
    } cases[] = {
        {"[place\nkind=copies\n", true},
        {"paper=7\nview=-3\ngeometry=x\n[place]\nkind=somewhere\nstate=9\n"
         "[filters]\nweight=99\nformat=-1\nslant=1x\nvariable=yes\n",
         false},
        {"[place]\nkind=group\nname=tag:gone\n", false},
        {"[place]\nkind=state\nstate=-4\n", false},
    };
    for (const auto& [settings, isTold] : cases) {
        SCOPED_TRACE(settings);
        std::filesystem::create_directories(std::filesystem::path(file_).parent_path());
        writeBytes(file_, settings);
        open();
        EXPECT_EQ(window_->problems().text().toStdString().starts_with(file_), isTold);
        EXPECT_EQ(window_->model().rowCount(), 2);
        EXPECT_TRUE(window_->searchField().text().isEmpty());
        EXPECT_TRUE(window_->filters().values().empty());
        EXPECT_EQ(window_->pane().views().currentIndex(), 0);
        window_->searchField().setText(QStringLiteral("alpha"));
        openAgain();
        EXPECT_EQ(window_->searchField().text(), QStringLiteral("alpha")) << "it is kept again";
        window_.reset();
    }
}

} // namespace
