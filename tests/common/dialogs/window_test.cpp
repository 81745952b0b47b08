// SPDX-License-Identifier: MIT
// The dialog of missing fonts as a window of the toolkit.
#include "dialogfixture.h"

#include "host/qt/windows.h"
#include "system/displays.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QLabel>
#include <QTest>
#include <QTimer>

namespace {

class ADialogInAWindow : public ADialog {
protected:
    ADialogInAWindow() { dialogs.setView(windows_.get()); }
    ~ADialogInAWindow() override { dialogs.setView(nullptr); }

    /// Does `steps` in the window, and closes it.
    void show(const std::function<void(QWidget&, host::Dialog&)>& steps,
              std::int32_t ending = kADMCancelItemID) {
        EXPECT_EQ(VexFontSuite::requestFonts(fonts).succeeded, 1);
        GlyphoraDialog dialog;
        dialog.setFontData(fonts);
        bool begun = false;
        QTimer::singleShot(0, qApp, [&] {
            begun = true;
            steps(*QApplication::activeModalWidget(), *dialogs.running().front());
            dialogs.giveUp(*dialogs.running().front());
        });
        EXPECT_EQ(dialog.Modal(plugin.ref(), "Glyphora", 16000, 0, 0), ending);
        EXPECT_TRUE(begun) << "it has never run";
    }

private:
    testsupport::Variable platform_{"QT_QPA_PLATFORM", std::nullopt};
    std::unique_ptr<host::Windows> windows_{
        glyphoraMakeWindows(dialogs, {}, {}, sys::offscreenPlatform)};
};

TEST_F(ADialogInAWindow, HasHeadingsOverTheirColumnsAtAnySize) {
    for (const char* const style : {"Fusion", "Windows"}) {
        for (const int points : {9, 22}) {
            QApplication::setStyle(QString::fromLatin1(style));
            QFont font = QApplication::font();
            font.setPointSize(points);
            QApplication::setFont(font);
            show([&](QWidget& window, host::Dialog& dialog) {
                const QWidget& list = *window.findChild<QAbstractScrollArea*>()->viewport();
                for (const int width : {760, 1400}) {
                    window.resize(width, 500);
                    QCoreApplication::processEvents();
                    host::RecordingCanvas canvas;
                    dialogs.draw(row(dialog, "Aa"), canvas, list.width(), 19);
                    std::size_t column = 0;
                    for (const host::Drawn& each : canvas.drawn()) {
                        if (each.kind != host::Drawn::Kind::Text || each.text.empty()) {
                            continue;
                        }
                        const char* const names[] = {"family", "style", "technology", "status"};
                        const auto& heading =
                            *window.findChild<QLabel*>(QString::fromLatin1(names[column++]));
                        EXPECT_EQ(list.mapTo(&window, QPoint()).x() + each.area.left,
                                  heading.mapTo(&window, heading.contentsRect().topLeft()).x())
                            << style << points << " " << width << each.text;
                    }
                    EXPECT_EQ(column, 4U);
                }
            });
        }
    }
}

/// Notes what is drawn.
class PaintWatcher : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        painted = painted || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }
    bool painted = false;
};

TEST_F(ADialogInAWindow, ShowsWhatBecameOfFontsBeforeItWaitsOrCloses) {
    GLY::IGLYNotifyHandler& news = *GLY::NotifiyHandlerFactory::getNotifyHandler(false);
    news.start();
    PaintWatcher watcher;
    bool shownEmpty = false;
    show(
        [&](QWidget& window, host::Dialog& dialog) {
            auto& list = *window.findChild<QAbstractScrollArea*>();
            answer({{"Aa", 1, true}, {"Bb", 1, true}, {"Cc", 1, true}, {"Present", 1, true}});
            EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
            list.viewport()->installEventFilter(&watcher);
            platform.delays.clear();
            platform.handle(FourCharCode("FILC"), FourCharCode("FSBC"));
            EXPECT_EQ(platform.delays, std::vector<std::uint32_t>{200});
            shownEmpty = watcher.painted && rows(dialog).empty();
        },
        kADMOKItemID);
    news.end();
    EXPECT_TRUE(shownEmpty);
}

} // namespace
