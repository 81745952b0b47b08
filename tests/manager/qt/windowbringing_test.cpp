// SPDX-License-Identifier: MIT
// What is brought into the library by the window, and what takes long there.
#include "manager/library/folders.h"
#include "manager/library/places.h"
#include "manager/qt/progressline.h"
#include "tests/manager/archives.h"
#include "tests/manager/qt/windowfixture.h"

#include <QDropEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QUrl>
#include <QWindow>

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

} // namespace

} // namespace managertest
