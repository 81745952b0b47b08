// SPDX-License-Identifier: MIT
// The module's entry: the toolkit, its language, and pictures instead of a screen.
#include "manager/qt/guests.h"
#include "manager/qt/librarywindow.h"

#include "manager/cli/arguments.h"
#include "manager/cli/report.h"
#include "manager/view/texts.h"
#include "system/displays.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QPixmap>
#include <QToolButton>
#include <QTranslator>

#include <array>
#include <clocale>
#include <cstdio>

namespace manager {

namespace {

/// What the toolkit says to programmers is of no use to users.
void handleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        warn(text.toStdString());
    }
}

QPalette darkPalette() {
    QPalette palette;
    const QColor window(0x2b, 0x2b, 0x2e);
    const QColor base(0x1f, 0x1f, 0x22);
    const QColor light(0xee, 0xee, 0xee);
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, light);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::Text, light);
    palette.setColor(QPalette::PlaceholderText, QColor(0xa6, 0xa6, 0xa6));
    palette.setColor(QPalette::Button, QColor(0x3a, 0x3a, 0x3e));
    palette.setColor(QPalette::ButtonText, light);
    palette.setColor(QPalette::ToolTipBase, window);
    palette.setColor(QPalette::ToolTipText, light);
    palette.setColor(QPalette::Highlight, QColor(0x2f, 0x6f, 0xb5));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x8a, 0x8a));
    }
    return palette;
}

/// Every view, in light and dark.
class Pictures {
public:
    Pictures(LibraryWindow& window, std::filesystem::path folder)
        : window_(window), folder_(std::move(folder)) {}

    [[nodiscard]] int take() {
        makeFolders(folder_.string());
        const SidebarPlace begin = window_.sidebar().place();
        const QPalette light = QApplication::palette();
        for (const bool dark : {false, true}) {
            QApplication::setPalette(dark ? darkPalette() : light);
            const std::string end = dark ? "-dark.png" : ".png";
            window_.searchField().clear();
            if (window_.sidebar().place().kind == SidebarPlace::Kind::Drawing) {
                save("drawing" + end);
                window_.list().setCurrentIndex(window_.model().index(0, 0));
                save("drawing-font" + end);
                window_.sidebar().choose({});
            }
            const QModelIndex first = window_.model().index(0, 0);
            window_.list().setCurrentIndex(first);
            window_.list().setExpanded(first, true);
            save("library" + end);
            window_.pane().views().setCurrentWidget(&window_.pane().characters());
            window_.finishReading();
            save("characters" + end);
            window_.pane().views().setCurrentIndex(0);
            window_.pane().lookButton().setChecked(true);
            window_.finishReading();
            save("look" + end);
            window_.pane().lookButton().setChecked(false);
            window_.list().selectAll();
            save("compare" + end);
            window_.list().setCurrentIndex(first);
            if (!window_.groups().empty()) {
                const Group& group = window_.groups().front();
                window_.sidebar().choose(
                    {SidebarPlace::Kind::Group, {}, GroupTitle{group.kind, group.name}.text()});
                save("collection" + end);
                window_.sidebar().choose({});
            }
            window_.sidebar().choose({.kind = SidebarPlace::Kind::Copies});
            save("duplicates" + end);
            window_.sidebar().choose({});
            window_.filters().set(FilterKind::Weight, "5");
            window_.filters().set(FilterKind::Script, "Latn");
            window_.filters().button().setChecked(true);
            window_.finishReading();
            save("filters" + end);
            window_.filters().clear();
            window_.filters().button().setChecked(false);
            window_.searchField().setText(QStringLiteral("no such font"));
            save("nothing" + end);
            window_.sidebar().choose(begin);
        }
        return failed_ ? exitFailure : exitSuccess;
    }

private:
    void save(const std::string& name) {
        QApplication::processEvents();
        QPixmap picture = window_.grab();
        while (window_.finishLines()) {
            picture = window_.grab();
        }
        const std::string path = (folder_ / name).string();
        if (!picture.save(QString::fromStdString(path), "PNG")) {
            warn(path + ": cannot be written");
            failed_ = true;
        }
    }

    LibraryWindow& window_;
    std::filesystem::path folder_;
    bool failed_ = false;
};

} // namespace

} // namespace manager

extern "C" int glyphoraShowWindow(const manager::WindowOptions& options,
                                  const std::string& platforms) {
    using namespace manager;
    qInstallMessageHandler(handleMessage);
    // Not by the environment, which programs that are started inherit.
    std::string tried = platforms;
    char name[] = "glyphora";
    char option[] = "-platform";
    std::array<char*, 4> arguments{name, option, tried.data(), nullptr};
    int count = 3;
    QApplication application(count, arguments.data());
    std::setlocale(LC_NUMERIC, "C"); // it has taken the user's
    if (platforms != sys::offscreenPlatform &&
        QApplication::platformName() == QLatin1String(sys::offscreenPlatform)) {
        return -1;
    }
    QCoreApplication::setOrganizationName(QStringLiteral("glyphora"));
    QCoreApplication::setApplicationName(QStringLiteral("library"));
    QApplication::setDesktopFileName(QStringLiteral("org.glyphora.Library"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.glyphora.Library")));
    QTranslator toolkit;
    // TRANSLATORS: the name of Qt's own catalogue in your language
    if (toolkit.load(QString::fromStdString(translated("qtbase_en")),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&toolkit);
    }
    LibraryWindow window(options);
    const Guests guests([&window](const WindowRequest& request) { window.open(request); });
    int status = exitSuccess;
    if (!options.pictures.empty()) {
        window.whenShown([&] {
            status = Pictures(window, options.pictures).take();
            QApplication::quit();
        });
    }
    window.show();
    QApplication::exec();
    return status;
}
