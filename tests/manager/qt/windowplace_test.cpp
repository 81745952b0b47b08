// SPDX-License-Identifier: MIT
// The window while others change the library: nobody is torn from where he is.
#include "tests/manager/qt/windowfixture.h"

#include <QPushButton>
#include <QScrollBar>

#include <algorithm>
#include <gtest/gtest.h>

using namespace manager;
using namespace managertest;

namespace {

TEST_F(TheLibrarysWindow, KeepsWhatIsChosenAndSeenWhenNewsCome) {
    for (int i = 10; i < 60; ++i) {
        const std::string name = "Many" + std::to_string(i);
        sandbox_.write(name + ".ttf", testsupport::makeFont({name, "Regular", name}));
    }
    glyphora({QStringLiteral("scan")});
    open();
    QTreeView& list = window_->list();
    const auto chosen = [&] {
        std::vector<std::string> names;
        for (const QModelIndex& row : list.selectionModel()->selectedRows()) {
            names.push_back(row.data().toString().toStdString());
        }
        std::sort(names.begin(), names.end());
        return names;
    };
    list.setExpanded(window_->model().index(0, 0), true);
    choose(1);
    press(Qt::Key_Down, Qt::ShiftModifier);
    list.selectionModel()->select(window_->model().index(1, 0, window_->model().index(0, 0)),
                                  QItemSelectionModel::Select);
    const auto before = chosen();
    ASSERT_EQ(before.size(), 3U);
    list.verticalScrollBar()->setValue(list.verticalScrollBar()->maximum() - 7);
    const std::string seen = list.indexAt({0, 0}).data().toString().toStdString();
    const int edge = list.visualRect(list.indexAt({0, 0})).top();

    sandbox_.write("a.ttf", testsupport::makeFont({"Aaa", "Regular", "Aaa-Regular"}));
    glyphora({QStringLiteral("scan")});
    ASSERT_TRUE(await([this] { return window_->model().rowCount() == 53; }));
    EXPECT_EQ(chosen(), before);
    EXPECT_EQ(list.indexAt({0, 0}).data().toString().toStdString(), seen);
    EXPECT_EQ(list.visualRect(list.indexAt({0, 0})).top(), edge);
}

TEST_F(TheLibrarysWindow, KeepsADrawingsFontsAsTheyWereLeftWhenNewsCome) {
    const auto font = [](const std::string& name) {
        return "<font>\n<psName>" + name + "</psName>\n</font>\n";
    };
    open();
    window_->open({.command = "<cmd>showRequest</cmd>\n" + font("Alpha-Black") +
                              font("Alpha-Thin") + "</cmd>\n"});
    ASSERT_TRUE(await([this] { return window_->model().listing().filter().isDrawing; }));
    ASSERT_TRUE(await([this] { return window_->model().rowCount() == 2; }));
    QTreeView& list = window_->list();
    const auto thin = [this] { return window_->model().index(1, 0); };
    ASSERT_TRUE(list.isExpanded(thin()));
    list.setExpanded(window_->model().index(0, 0), false);
    list.setCurrentIndex(window_->model().index(0, 0, thin())); // the same as the first has
    const QString chosen = list.currentIndex().data().toString();

    glyphora({QStringLiteral("activate"), QStringLiteral("Beta")});
    ASSERT_TRUE(await(
        [this] { return window_->model().listing().view().states.count(FaceState::Active) == 1; }));
    EXPECT_FALSE(list.isExpanded(window_->model().index(0, 0)));
    EXPECT_TRUE(list.isExpanded(thin()));
    EXPECT_EQ(list.currentIndex().parent(), thin());
    EXPECT_EQ(list.currentIndex().data().toString(), chosen);
    window_->sidebar().choose({});
    window_->sidebar().choose({.kind = SidebarPlace::Kind::Drawing});
    EXPECT_FALSE(list.isExpanded(window_->model().index(0, 0)));
    EXPECT_TRUE(list.isExpanded(thin()));
}

TEST_F(TheLibrarysWindow, LetsHearWhereTheFocusIsWhatWasFound) {
    open();
    const auto isHeard = [](QWidget& widget, const char* text) {
        return await([&] {
            return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Description) ==
                   QLatin1String(text);
        });
    };
    EXPECT_TRUE(isHeard(window_->list(), "2 families, 3 styles"));
    window_->searchField().setText(QStringLiteral("beta"));
    EXPECT_TRUE(isHeard(window_->searchField(), "1 family, 1 style"));
    window_->searchField().setText(QStringLiteral("betax"));
    EXPECT_TRUE(isHeard(window_->searchField(), "No font has this in its names."));
    EXPECT_TRUE(isHeard(*window_->findChild<QPushButton*>(QStringLiteral("way")),
                        "No font has this in its names."));
    window_->searchField().clear();
    window_->sidebar().choose({SidebarPlace::Kind::State, FaceState::Away, {}});
    EXPECT_TRUE(isHeard(window_->sidebar(), "There is no font here."));
    window_->sidebar().choose({});
    EXPECT_TRUE(isHeard(window_->list(), "2 families, 3 styles"));
}

} // namespace
