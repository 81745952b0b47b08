// SPDX-License-Identifier: MIT
// The tray's menu: what of a library it names, and what its rows do.
#include "manager/qt/tray.h"
#include "manager/view/texts.h"
#include "tests/manager/qt/windowfixture.h"

#include <gmock/gmock.h>

using namespace manager;
using testing::ElementsAre;

namespace managertest {

namespace {

class TheTraysMenu : public TheLibrarysWindow {
protected:
    static std::vector<std::string> rows(const TrayMenu& menu) {
        std::vector<std::string> texts;
        for (const QAction* const action : menu.actions()) {
            if (!action->isSeparator()) {
                texts.push_back(action->text().toStdString() + (action->isChecked() ? " x" : ""));
            }
        }
        return texts;
    }
};

TEST_F(TheTraysMenu, NamesWhatIsActiveAndWhy) {
    const FaceTable table{*std::make_unique<Library>(sandbox_.places())};
    const ContainerId alpha = table.faces()[0].container;
    const ContainerId beta = table.faces()[2].container;
    ASSERT_NE(alpha, beta);
    const auto viewOf = [&](const std::vector<ActiveContainer>& active) {
        return LibraryView{table, FaceStates(table, active)};
    };
    const GroupMember inAlpha{alpha, {}, {}, {}, {}};
    const Groups groups{{GroupKind::Collection, "R&D", {inAlpha}},
                        {GroupKind::Tag, "both", {inAlpha, {beta, {}, {}, {}, {}}}},
                        {GroupKind::Tag, "none", {}}};
    QStringList off;
    std::string done;
    TrayMenu menu({[&](const auto& containers) { off = containers; }, [&] { done += "open "; },
                   [&](bool kept) { done += kept ? "keep " : "leave "; }, [&] { done += "quit"; }});
    Reason session;
    session.kind = Reason::Kind::UntilLogout;
    const std::vector<std::string> folders{sandbox_.library(), sandbox_.root() + "/empty"};
    const ActiveContainer alphaSet{
        alpha, "Alpha", {table.faces()[0].file}, {Reason::byHand(), session}};
    menu.fill(viewOf({alphaSet}), groups, folders, false);
    EXPECT_THAT(rows(menu), ElementsAre("Collection \"R&&D\" x", "Alpha – by hand, until logout x",
                                        "&Open the Font Library",
                                        "&Stay here when the window is closed", "&Quit"));
    menu.actions()[0]->trigger();
    EXPECT_EQ(off, QStringList(QStringLiteral("collection:R&D")));
    menu.actions()[2]->trigger();
    EXPECT_EQ(off, QStringList(QString::number(static_cast<std::int32_t>(alpha))));
    for (const int row : {3, 2, 1}) {
        menu.actions()[menu.actions().size() - row]->trigger();
    }
    EXPECT_EQ(done, "open keep quit");

    menu.fill(viewOf({alphaSet, {beta, "Beta", {"beta.ttf"}, {session}}}), groups, folders, false);
    EXPECT_THAT(rows(menu), testing::IsSupersetOf({"Tag \"both\" x", "Folder \"library\" x"}));
    menu.actions()[2]->trigger();
    EXPECT_EQ(off,
              QStringList(QStringLiteral("folder:") + QString::fromStdString(sandbox_.library())));

    chooseLanguage("de_DE");
    menu.fill(viewOf({}), groups, folders, true);
    chooseLanguage("en_US");
    EXPECT_THAT(rows(menu), ElementsAre("Keine Schrift ist aktiv", "Schriftbibliothek ö&ffnen",
                                        "Beim &Schließen des Fensters hier bleiben x", "&Beenden"));
}

TEST_F(TheTraysMenu, SwitchesOffWhatTheWindowCanUndoAndKeepsItsSetting) {
    open();
    glyphora({QStringLiteral("activate"), QStringLiteral("Beta")});
    Tray tray(*window_);
    const auto shown = [&] {
        QMetaObject::invokeMethod(&tray.menu(), "aboutToShow");
        return rows(tray.menu());
    };
    const std::string beta = "Beta – by hand x";
    ASSERT_TRUE(await([&] { return shown().front() == beta; }));
    tray.menu().actions()[1]->trigger(); // behind the line below sets
    ASSERT_TRUE(await([&] { return window_->deeds().undoStack().count() == 1; }));
    ASSERT_TRUE(await([&] { return shown().front() == "No font is active"; }));
    window_->deeds().undo();
    EXPECT_TRUE(await([&] { return shown().front() == beta; }));

    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
    tray.menu().actions()[tray.menu().actions().size() - 2]->trigger();
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed());
    EXPECT_EQ(shown()[2], "&Stay here when the window is closed x");
    window_->close();
    tray.menu().actions()[tray.menu().actions().size() - 3]->trigger();
    EXPECT_TRUE(window_->isVisible());
    const Tray again(*window_);
    EXPECT_FALSE(QApplication::quitOnLastWindowClosed()) << "as it was left";
    tray.menu().actions()[tray.menu().actions().size() - 2]->trigger();
    EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
}

} // namespace

} // namespace managertest
