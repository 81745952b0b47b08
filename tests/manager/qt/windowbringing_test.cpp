// SPDX-License-Identifier: MIT
// What is brought into the library by the window, and what takes long there.
#include "manager/library/folders.h"
#include "manager/library/places.h"
#include "manager/qt/progressline.h"
#include "tests/manager/archives.h"
#include "tests/manager/qt/windowfixture.h"

#include <QAction>
#include <QDropEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>
#include <QWindow>

#include <algorithm>
#include <gmock/gmock.h>
#include <optional>

using namespace manager;

namespace managertest {

namespace {

class TheWindowBringingFonts : public TheLibrarysWindow {
protected:
    /// Whether the window shows that it would take these, and does.
    bool drop(const std::vector<std::string>& paths) {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& path : paths) {
            urls.push_back(QUrl::fromLocalFile(QString::fromStdString(path)));
        }
        data.setUrls(urls);
        QWindow* const target = window_->windowHandle();
        const QPoint place = window_->list().viewport()->mapTo(window_.get(), QPoint(5, 5));
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
        return event.isAccepted();
    }
    static std::string font(const std::string& name) {
        return testsupport::makeFont({name, "Regular", name});
    }
    [[nodiscard]] ProgressLine& progress() const {
        return *static_cast<ProgressLine*>(window_->findChild<QProgressBar*>()->parentWidget());
    }
};

TEST_F(TheWindowBringingFonts, TakesWhatIsOfUseAndTellsOfTheRest) {
    open();
    const std::string text = sandbox_.write("../outside/notes.odt", "no font");
    EXPECT_FALSE(drop({text}));
    const std::string archive = sandbox_.root() + "/two.zip";
    makeArchive(archive, {{"x/one.ttf", font("One")}, {"x/two.ttf", font("Two")}});
    const std::string cut = sandbox_.write("../outside/cut.zip", "PK");
    sandbox_.write("../outside/folder/three.ttf", font("Three"));
    const std::string lone = sandbox_.write("../outside/four.ttf", font("Four"));
    EXPECT_TRUE(drop({text, cut, archive, sandbox_.root() + "/outside/folder", lone}));
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 6; }));
    EXPECT_TRUE(awaitTold({"notes.odt: cannot be added", "cut.zip: no archive that is whole"}));
    EXPECT_FALSE(progress().isVisible());
}

TEST_F(TheWindowBringingFonts, ShowsWhatTakesLongAndCancelsItByKeys) {
    open();
    const std::string folder = folderOf(sandbox_.write("../outside/new/five.ttf", font("Five")));
    std::optional<FileLock> scanning(sandbox_.places().scanLock()); // which is waited for
    ASSERT_TRUE(drop({folder}));
    ASSERT_FALSE(progress().isVisible());
    ASSERT_TRUE(await([this] { return progress().isVisible(); }));
    auto* const button = progress().findChild<QPushButton*>();
    EXPECT_EQ(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name),
              QStringLiteral("Cancel: Reading the fonts…"));
    // Before that it has not begun, and a signal ends it at once.
    ASSERT_TRUE(await([&] { return readFolders(sandbox_.places()).size() == 2; }));
    QTest::keyClick(window_.get(), Qt::Key_N, Qt::AltModifier);
    EXPECT_TRUE(await([this] { return !progress().isVisible(); }));
    EXPECT_TRUE(awaitTold({"cancelled"}));
    scanning.reset();
    QTest::keyClick(window_.get(), Qt::Key_F5);
    EXPECT_TRUE(await([this] { return window_->model().rowCount() == 3; })) << "it was recorded";
}

TEST_F(TheWindowBringingFonts, ListsWhatADrawingUsesAndCollectsIt) {
    open();
    const auto draw = [&](const std::string& name, const std::string& inside) {
        return sandbox_.write("../outside/" + name,
                              R"(<svg xmlns="http://www.w3.org/2000/svg">)" + inside + "</svg>");
    };
    const std::string own = "<style>@font-face{font-family:Own;src:url(o.ttf)}</style>"
                            "<text font-family='Own'>x</text>";
    const std::string poster = draw("job & co/poster.2", own + R"(
        <text font-family="Alpha" font-weight="700">x</text><text font-family="Alpha">x</text>
        <text font-family="Four">x</text><text font-family="Nobody">x</text>)");
    const std::string lone = sandbox_.write("../outside/four.ttf", font("Four"));
    const std::string text = sandbox_.write("../outside/notes.odt", "no font");
    const std::string broken = sandbox_.write("../outside/broken.svg", "no drawing");
    ASSERT_TRUE(drop({text, poster, broken, lone}));
    ASSERT_TRUE(await([this] { return window_->model().rowCount() == 4; }));
    EXPECT_EQ(heard(0).substr(0, 10), "Alpha Bold") << heard(0);
    EXPECT_TRUE(awaitTold({"notes.odt: cannot be added", "broken.svg:1:1: not XML"}));

    const auto choice = [this] {
        const QList<QAction*> actions = window_->sidebar().actions();
        return *std::find_if(actions.begin(), actions.end(), [](const QAction* action) {
            return action->text().startsWith(QLatin1String("&Make"));
        });
    };
    const auto members = [this] {
        return window_->groups().empty() ? 0 : window_->groups().front().members.size();
    };
    EXPECT_EQ(choice()->text(), QStringLiteral("&Make Collection \"job && co\""));
    ASSERT_TRUE(drop({poster}));
    const auto isOffered = [&](const char* name) {
        return await([&] {
            return choice()->isEnabled() && choice()->text().contains(QLatin1String(name));
        });
    };
    ASSERT_TRUE(isOffered("\"poster\""));
    choice()->trigger();
    ASSERT_TRUE(await([&] { return members() == 2; })) << "Alpha, and Four which came with it";
    EXPECT_EQ(window_->groups().front().name, "poster");

    window_->groupDeeds().add({GroupKind::Tag, "mine"}, {{1, {}}});
    window_->deeds().undo();
    choice()->trigger();
    window_->deeds().finish();
    EXPECT_EQ(window_->deeds().undoStack().redoText(), QStringLiteral("add to mine"))
        << "nothing was done";
    window_->deeds().undo();
    EXPECT_TRUE(await([this] { return window_->groups().empty(); }));

    ASSERT_TRUE(
        drop({draw("bold.svg", R"(<text font-family="Alpha" font-weight="700">x</text>)")}));
    ASSERT_TRUE(isOffered("\"bold\""));
    choice()->trigger();
    ASSERT_TRUE(await([&] { return members() == 1; }));
    EXPECT_THAT(window_->groups().front().members.front().files,
                testing::ElementsAre("alpha-Bold.ttf"));
    window_->deeds().undo();
    ASSERT_TRUE(await([this] { return window_->groups().empty(); }));

    const std::string embedded = draw("embedded.svg", own);
    ASSERT_TRUE(drop({embedded}));
    EXPECT_TRUE(awaitTold({"brings along"}));
    EXPECT_EQ(window_->model().rowCount(), 1) << "the drawing of before";
    window_->sidebar().choose({});
    window_->open({});
    EXPECT_FALSE(choice()->isVisible());
}

} // namespace

} // namespace managertest
