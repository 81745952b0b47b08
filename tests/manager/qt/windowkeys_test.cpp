// SPDX-License-Identifier: MIT
// The window by the keyboard alone: where Tab leads.
#include "tests/manager/qt/windowfixture.h"

#include <QScrollBar>
#include <QSlider>

#include <gmock/gmock.h>

using namespace manager;
using namespace managertest;

namespace {

class TheKeyTab : public TheLibrarysWindow {
protected:
    /// All that Tab can reach now.
    [[nodiscard]] std::vector<QWidget*> stops() const {
        std::vector<QWidget*> all;
        for (auto* const widget : window_->findChildren<QWidget*>()) {
            const bool isStop =
                (widget->focusPolicy() & Qt::TabFocus) != 0 && widget->focusProxy() == nullptr;
            if (isStop && widget->isVisible() && widget->isEnabled()) {
                all.push_back(widget);
            }
        }
        return all;
    }
    /// Where `key` leads, until it comes back to where it began, or nowhere new.
    [[nodiscard]] std::vector<QWidget*> walk(Qt::Key key) const {
        std::vector<QWidget*> met;
        for (QWidget* at = QApplication::focusWidget();
             at != nullptr && std::ranges::find(met, at) == met.end();
             at = QApplication::focusWidget()) {
            met.push_back(at);
            QTest::keyClick(at, key);
        }
        EXPECT_EQ(QApplication::focusWidget(), met.front()) << "a trap";
        return met;
    }
    static std::string nameOf(const QWidget& widget) {
        return std::string(widget.metaObject()->className()) + " \"" +
               widget.accessibleName().toStdString() + "\"";
    }
    [[nodiscard]] QRect areaOf(const QWidget& widget) const {
        return {widget.mapTo(window_.get(), QPoint()), widget.size()};
    }
    /// By columns, in each from the top, what is beside each other from the left.
    [[nodiscard]] bool isBefore(const QRect& one, const QRect& other) const {
        const int pane = areaOf(window_->pane()).left();
        const int list = areaOf(*window_->list().parentWidget()).left();
        const auto columnOf = [&](const QRect& area) {
            return area.left() >= pane ? 2 : area.left() >= list ? 1 : 0;
        };
        if (columnOf(one) != columnOf(other)) {
            return columnOf(one) < columnOf(other);
        }
        const bool isBeside = one.top() <= other.center().y() && other.top() <= one.center().y();
        return isBeside ? one.left() < other.left() : one.top() < other.top();
    }
};

TEST_F(TheKeyTab, ReachesEverythingOnceInReadingOrder) {
    sandbox_.write("aaa.ttf", testsupport::makeFont({.family = "Aaa", .instances = {"Demi"}}));
    glyphora({QStringLiteral("scan")});
    open();
    choose(0);
    for (const bool isOpen : {false, true}) {
        window_->filters().button().setChecked(isOpen);
        window_->pane().lookButton().setChecked(isOpen);
        window_->finishReading();
        ASSERT_EQ(window_->pane().look().findChildren<QSlider*>().empty(), !isOpen);
        window_->pane().views().setCurrentIndex(isOpen ? 1 : 0);
        LookPanel& look = window_->pane().look();
        ASSERT_TRUE(await([&] { // laid out
            static_cast<void>(window_->grab());
            return look.isHidden() || (look.height() == look.sizeHint().height() &&
                                       !look.verticalScrollBar()->isVisible());
        }));
        std::map<QWidget*, QRect> areas; // before what Tab reaches is scrolled to
        for (QWidget* const stop : stops()) {
            areas[stop] = areaOf(*stop);
        }
        window_->sidebar().setFocus();
        const auto met = walk(Qt::Key_Tab);
        EXPECT_THAT(met, testing::UnorderedElementsAreArray(stops()));
        for (std::size_t i = 1; i < met.size(); ++i) {
            EXPECT_TRUE(isBefore(areas[met[i - 1]], areas[met[i]]))
                << nameOf(*met[i - 1]) << " comes before " << nameOf(*met[i]);
        }
        auto back = walk(Qt::Key_Backtab);
        std::reverse(back.begin() + 1, back.end());
        EXPECT_EQ(back, met);
    }
}

TEST_F(TheKeyTab, AndThoseThatEndASearchChooseWhatTheNextKeysActOn) {
    open();
    QTreeView& list = window_->list();
    const auto chosen = [&] {
        QStringList rows;
        for (const QModelIndex& index : list.selectionModel()->selectedRows()) {
            rows.push_back(
                index.data(Qt::AccessibleTextRole).toString().section(QLatin1Char(','), 0, 0));
        }
        return rows.join(QLatin1Char(' ')).toStdString();
    };
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Down, Qt::Key_Tab}) {
        SCOPED_TRACE(key);
        const auto go = [&] {
            QTest::keyClick(&window_->searchField(), key);
            if (key == Qt::Key_Tab) { // the filters' button comes first
                QTest::keyClick(QApplication::focusWidget(), key);
            }
            EXPECT_EQ(QApplication::focusWidget(), &list);
        };
        window_->searchField().setFocus();
        QTest::keyClicks(&window_->searchField(), QStringLiteral("beta"));
        ASSERT_TRUE(await([this] { return window_->model().rowCount() == 1; }));
        list.selectionModel()->clear();
        go();
        EXPECT_EQ(chosen(), "Beta");
        window_->searchField().setFocus();
        window_->searchField().clear();
        ASSERT_TRUE(await([this] { return window_->model().rowCount() == 2; }));
        go();
        EXPECT_EQ(chosen(), "Beta") << "which was";
    }
}

} // namespace
