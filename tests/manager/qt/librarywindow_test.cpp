// SPDX-License-Identifier: MIT
// The window with a library of its own, by keyboard, and beside commands that others give.
#include "manager/cli/announce.h"
#include "manager/qt/guests.h"
#include "manager/view/texts.h"
#include "platform/application.h"
#include "tests/manager/qt/windowfixture.h"
#include "tests/platform/events.h"

#include <QAbstractItemView>
#include <QClipboard>
#include <QComboBox>
#include <QDropEvent>
#include <QLabel>
#include <QMimeData>
#include <QScrollBar>
#include <QStatusBar>
#include <QToolButton>
#include <QUrl>
#include <QWindow>

#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>

using namespace manager;
using namespace managertest;

namespace {

/// Until it goes, however the test ends.
class Language {
public:
    explicit Language(const std::string& locale) { chooseLanguage(locale); }
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;
    ~Language() { chooseLanguage("en_US"); }
};

TEST_F(TheLibrarysWindow, ListsWhatIsTypedAndTellsItToScreenReaders) {
    open();
    EXPECT_EQ(heard(0), "Alpha, 2 styles, inactive");
    EXPECT_EQ(heard(1), "Beta, 1 style, inactive");
    QTest::keyClicks(&window_->searchField(), QStringLiteral("alp bold"));
    EXPECT_EQ(window_->model().rowCount(), 1);
    EXPECT_EQ(heard(0), "Alpha, 1 style, inactive");
    QTest::keyClicks(&window_->searchField(), QStringLiteral("x"));
    EXPECT_EQ(window_->model().rowCount(), 0);
    EXPECT_FALSE(window_->list().isVisible()) << "what to do now stands in its place";
    window_->searchField().clear();
    EXPECT_TRUE(window_->list().isVisible());
    EXPECT_EQ(window_->model().rowCount(), 2);
}

TEST_F(TheLibrarysWindow, NarrowsTheListByFiltersAndLeavesOneByAClick) {
    open();
    QTest::keyClick(window_.get(), Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    FilterPanel& filters = window_->filters();
    EXPECT_TRUE(await([&] { return filters.field(FilterKind::State)->hasFocus(); }));
    QTest::keyClicks(filters.field(FilterKind::Format), QStringLiteral("T")); // Type 1
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 0; }));
    QTest::keyClick(filters.field(FilterKind::Format), Qt::Key_Down);
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 2; }));
    QTest::keyClicks(filters.field(FilterKind::State), QStringLiteral("A")); // at once
    EXPECT_EQ(window_->model().rowCount(), 0);
    glyphora({QStringLiteral("activate"), QStringLiteral("Alpha")});
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 1; }));
    const auto click = [&](const char* name) {
        const auto chips = filters.findChildren<QToolButton*>();
        const auto chip = std::ranges::find_if(chips, [name](const QToolButton* one) {
            return one->accessibleName() == QLatin1String(name);
        });
        ASSERT_NE(chip, chips.end());
        QTest::mouseClick(*chip, Qt::LeftButton);
    };
    click("Remove the filter \"State: Active\"");
    EXPECT_EQ(window_->model().rowCount(), 2);
    EXPECT_EQ(filters.values().size(), 1);
    filters.set(FilterKind::State, "0");
    click("Remove all filters");
    EXPECT_TRUE(filters.values().empty());
}

TEST_F(TheLibrarysWindow, LeavesAnOpenListOfAFilterAlone) {
    FilterPanel filters([] {}, nullptr); // to which nobody else offers anything
    filters.show();
    filters.button().click();
    auto& box = static_cast<QComboBox&>(*filters.field(FilterKind::Language));
    filters.offer({{FilterKind::Language, {"de", "en"}}});
    EXPECT_EQ(box.count(), 3);
    box.showPopup();
    filters.offer({{FilterKind::Language, {"de", "en", "fr"}}});
    QApplication::processEvents();
    EXPECT_EQ(box.count(), 3);
    EXPECT_TRUE(box.view()->isVisible());
    box.hidePopup();
    EXPECT_TRUE(await([&] { return box.count() == 4; }));
    filters.offer({{FilterKind::Axis, {"wght"}}});
    EXPECT_EQ(static_cast<QComboBox&>(*filters.field(FilterKind::Axis)).itemText(1),
              QStringLiteral("Weight (wght)"));
}

TEST_F(TheLibrarysWindow, SpeaksTheLanguageOfItsUser) {
    const Language german("de_DE");
    open();
    glyphora({QStringLiteral("activate"), QStringLiteral("Beta")});
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 Schnitt, aktiv"}}));
    window_->list().setExpanded(window_->model().index(1, 0), true);
    EXPECT_EQ(heard(2), "Regular, TrueType, aktiv: von Hand");
    EXPECT_EQ(heard(0), "Alpha, 2 Schnitte, inaktiv");
}

TEST_F(TheLibrarysWindow, FindsACharacterByKeysAndCopiesIt) {
    open();
    choose(1);
    QTest::keyClick(window_.get(), Qt::Key_C, Qt::AltModifier);
    CharacterPane& pane = window_->pane().characters();
    CharacterGrid& grid = pane.grid();
    ASSERT_TRUE(await([&] { return grid.characters().rowCount() > 2; }));
    const auto heardOf = [&](int row) {
        QApplication::processEvents(); // it lays its cells out
        QAccessibleInterface* const cells = QAccessible::queryAccessibleInterface(&grid);
        return cells->child(row)->text(QAccessible::Name).toStdString();
    };
    const auto copied = [] { return QGuiApplication::clipboard()->text().toStdString(); };
    pane.searchField().setFocus();
    QTest::keyClicks(&pane.searchField(), QStringLiteral("capital b"));
    ASSERT_EQ(grid.characters().rowCount(), 1);
    QTest::keyClick(&pane.searchField(), Qt::Key_Return);
    EXPECT_TRUE(grid.hasFocus());
    EXPECT_EQ(heardOf(0), "LATIN CAPITAL LETTER B, U+0042");
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_EQ(copied(), "B");
    EXPECT_EQ(heardOf(0), "LATIN CAPITAL LETTER B, U+0042, copied");
    EXPECT_EQ(pane.told().toStdString(), heardOf(0));
    pane.searchField().clear(); // the keyboard stays at the character
    EXPECT_EQ(heardOf(0).find("copied"), std::string::npos) << "it is another one now";
    QTest::keyClick(&grid, Qt::Key_Right);
    EXPECT_EQ(pane.told(), QStringLiteral("LATIN CAPITAL LETTER C, U+0043"));
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(copied(), "C");
    const int above = grid.currentIndex().row();
    QTest::keyClick(&grid, Qt::Key_Down);
    const QModelIndex below = grid.currentIndex();
    EXPECT_EQ(grid.visualRect(below).left(),
              grid.visualRect(grid.characters().index(above)).left());
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, grid.visualRect(below).center());
    EXPECT_EQ(copied(), textOfCharacter(grid.characters().at(below.row())));
}

TEST_F(TheLibrarysWindow, DrawsAFaceWhereItsAxesAreMovedByKeys) {
    sandbox_.write("vary.ttf", testsupport::makeFont({.family = "Vary", .instances = {"Demi"}}));
    glyphora({QStringLiteral("scan")});
    open();
    choose(2);
    FacePane& pane = window_->pane();
    const auto drawn = [&] {
        QImage image;
        do {
            QApplication::processEvents(); // lays it out
            image = pane.waterfall().grab().toImage();
        } while (window_->finishLines());
        return image;
    };
    const QImage own = drawn();
    QTest::mouseClick(&pane.lookButton(), Qt::LeftButton);
    ASSERT_TRUE(await([&] { return pane.look().instances() != nullptr; }));
    const int height = own.height(); // the panel takes of it
    QImage before = drawn();
    EXPECT_LT(before.height(), height);
    QTest::keyClick(pane.look().slider("wght"), Qt::Key_End);
    EXPECT_EQ(pane.look().value("wght")->value(), 900);
    EXPECT_NE(drawn(), before);
    EXPECT_EQ(pane.look().instances()->currentIndex(), -1) << "none stands there";
    QTest::keyClick(pane.look().instances(), Qt::Key_Down);
    EXPECT_EQ(pane.look().value("wght")->value(), 400);
    QTest::keyClick(pane.look().instances(), Qt::Key_Down);
    EXPECT_EQ(pane.look().value("wght")->value(), 500);
    const QString instance = pane.look().instances()->currentText();
    pane.look().value("wght")->setValue(501);
    EXPECT_EQ(pane.look().instances()->currentText(), QString());
    pane.look().value("wght")->setValue(500);
    EXPECT_EQ(pane.look().instances()->currentText(), instance);
    QTest::keyClick(pane.look().instances(), Qt::Key_Up);
    EXPECT_EQ(drawn(), before);
    QTest::keyClick(pane.look().slider("wght"), Qt::Key_End);
    choose(1); // which has no axes
    ASSERT_TRUE(await([&] { return pane.look().instances() == nullptr; }));
    choose(2);
    ASSERT_TRUE(await([&] { return pane.look().instances() != nullptr; }));
    EXPECT_TRUE(await([&] { return drawn() == before; }));
}

TEST_F(TheLibrarysWindow, ComparesEachFaceOnceAndTellsNamesakesApart) {
    sandbox_.write("copy/beta.ttf", testsupport::makeFont({"Beta", "Regular", "Beta-Regular"}));
    sandbox_.write("more/other.ttf", testsupport::makeFont({"Alpha", "Regular", "Alpha-Regular"}));
    glyphora({QStringLiteral("scan")});
    open();
    window_->list().expandAll();
    EXPECT_TRUE((choose(0), window_->pane().lookButton().isEnabled()));
    window_->list().selectAll();
    EXPECT_FALSE(window_->pane().lookButton().isEnabled()) << "which are of one face";
    const std::string heard = window_->pane().waterfall().accessibleDescription().toStdString();
    const std::string names = ", " + heard.substr(0, heard.find(": ")) + ",";
    for (const std::string& name :
         {std::string("Alpha Bold"), std::string("Alpha Regular  other.ttf"),
          std::string("Alpha Regular  alpha-Regular.ttf"), "Beta Regular  " + sandbox_.library()}) {
        EXPECT_THAT(names, testing::HasSubstr(", " + name + ","));
    }
    EXPECT_EQ(std::count(names.begin(), names.end(), ','), 6) << names;
    const auto labels = window_->pane().findChildren<QLabel*>();
    EXPECT_TRUE(std::ranges::any_of(
        labels, [](const QLabel* label) { return label->text() == QLatin1String("5 fonts"); }));
}

TEST_F(TheLibrarysWindow, AddsFoldersAndFilesThatAreDroppedAnywhereInIt) {
    open();
    const auto drop = [this](const QList<QUrl>& urls) {
        QMimeData data;
        data.setUrls(urls);
        QWindow* const target = window_->windowHandle(); // as the display does
        const QPoint place = window_->list().viewport()->mapTo(window_.get(), QPoint(5, 5));
        QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                              Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDropEvent event(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(target, &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    };
    EXPECT_FALSE(drop({QUrl(QStringLiteral("https://example.org/font.ttf"))}));
    const auto make = [this](const char* path, const char* name) {
        return sandbox_.write(path, testsupport::makeFont({name, "Regular", name}));
    };
    const std::string folder = folderOf(make("../outside/#1 %20/new.ttf", "New"));
    const std::string single = make("../outside/single.otf", "Single");
    const auto url = [](const std::string& path) {
        return QUrl::fromLocalFile(QString::fromStdString(path));
    };
    EXPECT_TRUE(drop({url(folder), url(single)}));
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 4; }));
    EXPECT_TRUE(awaitTold({"2 font files added"}));
    EXPECT_TRUE(std::filesystem::exists(single));
}

TEST_F(TheLibrarysWindow, SwitchesByKeyAndUndoesIt) {
    open();
    choose(1);
    const auto canBe = [this](int action) { // 0: activated, 1: deactivated
        return window_->list().actions().at(action)->isEnabled();
    };
    EXPECT_TRUE(canBe(0) && !canBe(1));
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 style, active"}}));
    EXPECT_TRUE(!canBe(0) && canBe(1));
    EXPECT_EQ(heard(0), "Alpha, 2 styles, inactive");
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 style, inactive"}}));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 style, active"}}));
    press(Qt::Key_Backspace, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{1, "Beta, 1 style, inactive"}}));
    for (const char* const state : {"active", "inactive"}) { // by turns
        press(Qt::Key_Return);
        EXPECT_TRUE(awaitHeard({{1, std::string("Beta, 1 style, ") + state}}));
    }
}

TEST_F(TheLibrarysWindow, MakesFillsRenamesAndUnmakesSetsAndUndoesIt) {
    open();
    Sidebar& sidebar = window_->sidebar();
    const auto sets = [this] { // "tag:NAME 1"
        std::vector<std::string> lines;
        for (const Group& group : window_->groups()) {
            lines.push_back(GroupTitle{group.kind, group.name}.text() + " " +
                            std::to_string(group.members.size()));
        }
        return lines;
    };
    const auto become = [&](const std::vector<std::string>& wanted) {
        return await([&] { return sets() == wanted; });
    };
    const auto drop = [&](int row, const QString& place) {
        const QModelIndexList rows = {window_->model().index(row, 0)};
        const std::unique_ptr<QMimeData> data(window_->model().mimeData(rows));
        const QPoint at =
            sidebar.visualItemRect(sidebar.findItems(place, Qt::MatchRecursive).front()).center();
        QDragEnterEvent enter(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &enter);
        QDragMoveEvent move(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(sidebar.viewport(), &move);
        if (move.isAccepted()) {
            QDropEvent event(at, Qt::CopyAction, data.get(), Qt::LeftButton, {});
            QApplication::sendEvent(sidebar.viewport(), &event);
        }
        return move.isAccepted();
    };
    ASSERT_TRUE(drop(1, QStringLiteral("Tags")));
    ASSERT_TRUE(become({"tag:New tag 1"}));
    QTest::keyClicks(window_->focusWidget(), QStringLiteral("Mine"));
    QTest::keyClick(window_->focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(become({"tag:Mine 1"}));
    EXPECT_EQ(window_->model().rowCount(), 1) << "and it is chosen";

    sidebar.choose({});
    EXPECT_FALSE(drop(0, QStringLiteral("Inactive")));
    ASSERT_TRUE(drop(0, QStringLiteral("Mine")));
    ASSERT_TRUE(become({"tag:Mine 2"}));
    ASSERT_TRUE(drop(0, QStringLiteral("Collections")));
    ASSERT_TRUE(become({"collection:New collection 1", "tag:Mine 2"}));
    sidebar.choose({SidebarPlace::Kind::Group, {}, "tag:Mine"});
    QTest::keyClick(&sidebar, Qt::Key_Return, Qt::ControlModifier); // all of it
    EXPECT_TRUE(awaitHeard({{0, "Alpha, 2 styles, active"}, {1, "Beta, 1 style, active"}}));
    choose(0);
    window_->list().setFocus();
    press(Qt::Key_Delete);
    ASSERT_TRUE(become({"collection:New collection 1", "tag:Mine 1"}));
    sidebar.setFocus();
    QTest::keyClick(&sidebar, Qt::Key_Delete);
    ASSERT_TRUE(become({"collection:New collection 1"}));
    EXPECT_EQ(window_->model().rowCount(), 2);
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(become({"collection:New collection 1", "tag:Mine 2"}));
    press(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(become({"collection:New collection 1", "tag:Mine 1"}));
}

TEST_F(TheLibrarysWindow, KeepsOneOfCopiesAndUndoesIt) {
    sandbox_.write("copy/beta.ttf", testsupport::makeFont({"Beta", "Regular", "Beta-Regular"}));
    sandbox_.write("light.ttf", testsupport::makeFont({"Beta", "Light", "Beta-Light"}));
    glyphora({QStringLiteral("scan")});
    open();
    window_->sidebar().choose({.kind = SidebarPlace::Kind::Copies});
    ASSERT_EQ(window_->model().rowCount(), 1);
    // Only now, or the window itself would draw with one of them, which then could not leave.
    glyphora({QStringLiteral("activate"), QStringLiteral("2"), QStringLiteral("3")});
    EXPECT_TRUE(awaitHeard({{0, "Beta, 2 styles, conflicting"}}));
    const QModelIndex beta = window_->model().index(0, 0);
    window_->list().setCurrentIndex(beta);
    EXPECT_FALSE(window_->findChild<QAction*>(QStringLiteral("keep"))->isEnabled()) << "of which?";
    window_->list().setExpanded(beta, true);
    const FaceTable& table = window_->model().listing().view().table;
    for (int row = 0; row < 2; ++row) { // the one that lies with Light
        const QModelIndex face = window_->model().index(row, 0, beta);
        if (table.faces()[window_->model().facesOf(face).front()].container == ContainerId{2}) {
            window_->list().setCurrentIndex(face);
        }
    }
    auto* const keep = window_->findChild<QAction*>(QStringLiteral("keep"));
    {
        const Language german("de_DE"); // which leaves the tag its name
        keep->trigger();
    }
    EXPECT_TRUE(awaitHeard({{0, "Beta, 2 styles, 1 active"}}));
    ASSERT_EQ(window_->groups().size(), 1U);
    EXPECT_EQ(window_->groups().front().name, "Duplicates");
    window_->list().setFocus();
    press(Qt::Key_Z, Qt::ControlModifier);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(awaitHeard({{0, "Beta, 2 styles, conflicting"}}));
    EXPECT_TRUE(await([this] { return window_->groups().empty(); }));
}

TEST_F(TheLibrarysWindow, FollowsOthersAndKeepsItsPlace) {
    open();
    QTreeView& list = window_->list();
    list.setExpanded(window_->model().index(0, 0), true);
    const QModelIndex alpha = window_->model().index(0, 0);
    list.setCurrentIndex(window_->model().index(1, 0, alpha));
    QScrollBar& preview = *window_->pane().waterfall().verticalScrollBar();
    ASSERT_TRUE(await([&] { return preview.maximum() > 20; }));
    preview.setValue(20);
    sandbox_.write("a.ttf", testsupport::makeFont({"Aaa", "Regular", "Aaa-Regular"}));
    glyphora({QStringLiteral("scan")});
    ASSERT_TRUE(await([this] { return window_->model().rowCount() == 3; }));
    EXPECT_TRUE(list.isExpanded(window_->model().index(1, 0)));
    EXPECT_EQ(list.currentIndex().parent(), window_->model().index(1, 0));
    EXPECT_EQ(list.currentIndex().row(), 1);
    glyphora({QStringLiteral("activate"), QStringLiteral("Alpha")});
    EXPECT_TRUE(awaitHeard({{1, "Alpha, 2 styles, active"}}));
    EXPECT_EQ(preview.value(), 20);
    list.setCurrentIndex(window_->model().index(0, 0));
    EXPECT_TRUE(await([&] { return preview.value() == 0; }));
}

TEST_F(TheLibrarysWindow, ListsWhatADrawingMayUseAndActivatesIt) {
    const auto asked = [](const std::string& fonts) {
        return WindowRequest{.command = "<cmd>showRequest</cmd>\n" + fonts + "</cmd>\n"};
    };
    const auto font = [](const std::string& name) {
        return "<font>\n<psName>" + name + "</psName>\n</font>\n";
    };
    sandbox_.write("more/alpha.ttf", testsupport::makeFont({"Alpha", "Light", "Alpha-Light"}));
    glyphora({QStringLiteral("scan")});
    open();
    window_->filters().set(FilterKind::Weight, "1"); // would hide all of it
    window_->open(asked(font("Alpha-Black") + font("Gamma") + font("Beta-Regular")));
    ASSERT_TRUE(await([this] { return window_->model().rowCount() == 3; }));
    EXPECT_EQ(heard(0), "Alpha-Black, 2 candidates, not in the library");
    EXPECT_EQ(heard(1), "Alpha Bold, same family, Bold instead of Black, inactive");
    EXPECT_EQ(heard(2), "Alpha Light, same family, Light instead of Black, inactive");
    EXPECT_EQ(heard(3), "Gamma, 0 candidates, not in the library");
    EXPECT_EQ(heard(4), "Beta-Regular, 1 candidate, inactive");
    EXPECT_EQ(heard(5), "Beta Regular, the font asked for, inactive");
    EXPECT_EQ(window_->list().currentIndex().parent(), window_->model().index(0, 0));
    choose(1);
    press(Qt::Key_Return);
    EXPECT_EQ(window_->statusBar()->currentMessage(),
              QStringLiteral("The library has nothing that may replace Gamma."));
    choose(0);
    press(Qt::Key_Return); // the best for it
    EXPECT_TRUE(await([this] { return heard(1).ends_with("Black, active: by hand"); })) << heard(1);
    EXPECT_TRUE(heard(2).ends_with("inactive"));
    const QPoint third = window_->list().visualRect(window_->model().index(2, 0)).center();
    QTest::mouseClick(window_->list().viewport(), Qt::LeftButton, {}, third);
    QTest::mouseDClick(window_->list().viewport(), Qt::LeftButton, {}, third);
    EXPECT_TRUE(awaitHeard({{4, "Beta-Regular, 1 candidate, active"}}));
    EXPECT_EQ(heard(0), "Alpha-Black, 2 candidates, not in the library") << "nor is it now";

    window_->open(asked(font("Beta-Regular")));
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 1; }));
    window_->open({.search = "alpha"});
    EXPECT_EQ(heard(0), "Alpha, 3 styles, 1 active");
}

TEST_F(TheLibrarysWindow, ListsADrawingThoughAReadingComesFirst) {
    open();
    ASSERT_TRUE(finishDeeds()); // after which the library is read, without the drawing
    std::promise<void> isRead;
    window_->deeds().work({}, [&](Desk&) {
        isRead.set_value();
        return [] {};
    });
    isRead.get_future().wait(); // not yet shown
    window_->open({.command = "<cmd>showRequest</cmd>\n<font>\n<psName>Beta-Regular</psName>\n"
                              "</font>\n</cmd>\n"});
    EXPECT_TRUE(awaitHeard({{0, "Beta-Regular, 1 candidate, inactive"}}));
}

TEST_F(TheLibrarysWindow, ShowsWhatAPlugInAsksTheServerFor) {
    QProcess server;
    server.start(QStringLiteral(GLYPHORA_PROGRAM), {"serve"});
    ASSERT_TRUE(await([] { return findServer().has_value(); }));
    const auto ask = [] {
        platformtest::TestEvent event("QGLY", "****", "QGLY");
        event.putText("<cmd>showRequest</cmd>\n<font>\n<psName>Beta-Regular</psName>\n</font>\n"
                      "</cmd>\n");
        return event.send() == noErr ? event.text().value_or("") : "";
    };
    EXPECT_THAT(ask(), testing::HasSubstr("<error>there is no display"));
    ASSERT_FALSE(handOver({}));
    open();
    const Guests guests([this](const WindowRequest& request) { window_->open(request); });
    EXPECT_THAT(ask(), testing::Not(testing::HasSubstr("<error>")));
    EXPECT_TRUE(awaitHeard({{0, "Beta-Regular, 1 candidate, inactive"}}));
    server.terminate();
    EXPECT_TRUE(await([&] { return server.state() == QProcess::NotRunning; }));
}

TEST_F(TheLibrarysWindow, IsTheOnlyOneOfItsSession) {
    ASSERT_FALSE(handOver({}));
    open({.search = "alpha"});
    std::optional<Guests> guests;
    guests.emplace([this](const WindowRequest& request) { window_->open(request); });
    EXPECT_EQ(window_->model().rowCount(), 1);
    window_->showMinimized();
    QProcess second;
    second.start(QStringLiteral(GLYPHORA_PROGRAM), {"show", "beta", "regular"});
    ASSERT_TRUE(await([&] { return second.state() == QProcess::NotRunning; }));
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
    EXPECT_EQ(window_->searchField().text(), QStringLiteral("beta regular"));
    EXPECT_TRUE(awaitActive(*window_));
    EXPECT_FALSE(window_->isMinimized());

    // One that comes while it closes is not lost, but wants a window of its own.
    second.start(QStringLiteral(GLYPHORA_PROGRAM), {"show", "alpha"});
    ASSERT_TRUE(testsupport::await([] {
        pollfd events{PLEventFileDescriptor(), POLLIN, 0};
        return poll(&events, 1, 0) == 1;
    }));
    guests.reset();
    ASSERT_TRUE(await([&] { return second.state() == QProcess::NotRunning; }));
    EXPECT_THAT(second.readAllStandardError().toStdString(), testing::HasSubstr("no display"));
}

} // namespace
