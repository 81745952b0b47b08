// SPDX-License-Identifier: MIT
// What of the chosen rows is switched: families whole, and faces apart from them.
#include "tests/manager/qt/windowfixture.h"

#include <QAction>
#include <QItemSelectionModel>
#include <QMimeData>
#include <QUndoStack>

using namespace manager;

namespace managertest {

namespace {

class TheChosenRows : public TheLibrarysWindow {
protected:
    TheChosenRows() {
        open();
        window_->list().setExpanded(window_->model().index(0, 0), true);
    }
    [[nodiscard]] QModelIndex family(int row) const { return window_->model().index(row, 0); }
    /// Of Alpha: Regular, Bold.
    [[nodiscard]] QModelIndex face(int row) const {
        return window_->model().index(row, 0, family(0));
    }
    void chooseRows(const QModelIndexList& rows) {
        window_->list().clearSelection();
        for (const QModelIndex& row : rows) {
            window_->list().selectionModel()->setCurrentIndex(row, QItemSelectionModel::Select);
        }
    }
    void switchRows(const QModelIndexList& rows, int key) {
        chooseRows(rows);
        press(key, Qt::ControlModifier);
        ASSERT_TRUE(finishDeeds());
    }
};

TEST_F(TheChosenRows, SwitchFacesApartFromTheirFamily) {
    EXPECT_TRUE(awaitHeard({{1, "Regular, TrueType, inactive"}, {2, "Bold, TrueType, inactive"}}));
    const auto on = Qt::Key_Return;
    const auto off = Qt::Key_Backspace;
    const struct {
        QModelIndexList rows;
        Qt::Key key;
        std::string regular;
        std::string bold;
        std::string beta;
    } steps[] = {
        {{face(1)}, on, "inactive", "active: by hand", "inactive"},
        {{face(0), family(1)}, on, "active: by hand", "active: by hand", "active"},
        {{face(1), family(1)}, off, "active: by hand", "inactive", "inactive"},
        {{family(0)}, on, "active: by hand", "active: by hand", "inactive"},
        {{face(0), family(0)}, off, "inactive", "inactive", "inactive"},
        {{face(0), face(1)}, on, "active: by hand", "active: by hand", "inactive"},
        {{face(0), face(1)}, off, "inactive", "inactive", "inactive"},
    };
    const auto areHeard = [this](const auto& step) {
        return awaitHeard({{1, "Regular, TrueType, " + step.regular},
                           {2, "Bold, TrueType, " + step.bold},
                           {3, "Beta, 1 style, " + step.beta}});
    };
    for (const auto& step : steps) {
        switchRows(step.rows, step.key);
        EXPECT_TRUE(areHeard(step));
    }
    EXPECT_EQ(window_->deeds().undoStack().count(), 7);
    for (int step = 5; step >= 0; --step) {
        press(Qt::Key_Z, Qt::ControlModifier);
        ASSERT_TRUE(finishDeeds());
        EXPECT_TRUE(areHeard(steps[step])) << step;
    }
}

TEST_F(TheChosenRows, AreTurnedByWhatIsNotActiveOfThem) {
    chooseRows({face(1)});
    press(Qt::Key_Return);
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, 1 active"}}));
    chooseRows({family(0)});
    press(Qt::Key_Return);
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, active"}}));
    press(Qt::Key_Return);
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, inactive"}}));
}

TEST_F(TheChosenRows, AreMembersOfATagByFacesApartFromTheirFamily) {
    const auto choiceOf = [this](const QModelIndexList& rows) {
        const std::unique_ptr<QMimeData> dragged(window_->model().mimeData(rows));
        return fontsIn(*dragged);
    };
    const auto faces = window_->model().listing().view().table.faces();
    const auto alpha = static_cast<std::int32_t>(faces.front().container);
    const auto beta = static_cast<std::int32_t>(faces.back().container);
    const FontChoice bold{{alpha, {"alpha-Bold.ttf"}}};
    EXPECT_EQ(choiceOf({face(1), family(1)}), (FontChoice{{alpha, bold.at(alpha)}, {beta, {}}}));
    EXPECT_EQ(choiceOf({face(1), face(0)}), (FontChoice{{alpha, {}}})) << "all that it has";
    EXPECT_EQ(choiceOf({face(1), family(0)}), (FontChoice{{alpha, {}}}));
    EXPECT_EQ(
        toWords({{alpha, bold.at(alpha)}, {beta, {}}}, window_->model().listing().view().table),
        QStringList({QString::number(beta),
                     QStringLiteral("file:") +
                         QString::fromStdString(sandbox_.library() + "/alpha-Bold.ttf")}));

    const GroupTitle title{GroupKind::Tag, "mine"};
    const auto chooseTag = [&](int families, const char* count) {
        window_->sidebar().choose({SidebarPlace::Kind::Group, {}, title.text()});
        const auto items = window_->sidebar().findItems(QStringLiteral("mine"),
                                                        Qt::MatchExactly | Qt::MatchRecursive);
        EXPECT_TRUE(items.size() == 1 && items.front()->text(1) == QLatin1String(count));
        window_->list().setFocus();
        return await([&] { return window_->model().rowCount() == families; });
    };
    window_->groupDeeds().add(title, choiceOf({face(1), family(1)}));
    ASSERT_TRUE(await([this] { return window_->groups().size() == 1; }));
    ASSERT_TRUE(chooseTag(2, "2"));
    QTest::keyClick(&window_->sidebar(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(finishDeeds());
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 1 style, active"}, {2, "Beta, 1 style, active"}}));
    window_->sidebar().choose({});
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, 1 active"}}));

    window_->groupDeeds().add(title, choiceOf({family(0)}));
    ASSERT_TRUE(finishDeeds());
    ASSERT_TRUE(await([&] { return window_->groups().front().members.front().files.empty(); }));
    ASSERT_TRUE(chooseTag(2, "3"));
    window_->list().setExpanded(family(0), true);
    chooseRows({face(0)});
    press(Qt::Key_Delete);
    ASSERT_TRUE(await([&] { return !window_->groups().front().members.front().files.empty(); }));
    EXPECT_EQ(window_->groups().front().members.front().files, bold.at(alpha));
    press(Qt::Key_Z, Qt::ControlModifier);
    ASSERT_TRUE(await([&] { return window_->groups().front().members.front().files.empty(); }));
}

TEST_F(TheChosenRows, AreNotWhatAFolderSwitches) {
    const auto choosePlace = [this](const std::string& path) {
        window_->sidebar().choose({SidebarPlace::Kind::Folder, {}, path});
        window_->sidebar().setFocus();
    };
    const auto isOffered = [this](const char* text) {
        const auto actions = window_->sidebar().actions();
        return std::ranges::any_of(actions, [&](const QAction* action) {
            return action->text() == QLatin1String(text) && action->isEnabled();
        });
    };
    EXPECT_FALSE(isOffered("&Activate All"));
    chooseRows({family(1)});
    choosePlace(sandbox_.library());
    EXPECT_TRUE(isOffered("&Activate All"));
    EXPECT_FALSE(isOffered("&Rename"));
    QTest::keyClick(&window_->sidebar(), Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(finishDeeds());
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, active"}, {3, "Beta, 1 style, active"}}));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, inactive"}, {3, "Beta, 1 style, inactive"}}));
}

} // namespace

} // namespace managertest
