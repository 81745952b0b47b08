// SPDX-License-Identifier: MIT
// The module's entry: the toolkit and its language.
#include "manager/qt/colours.h"
#include "manager/qt/guests.h"
#include "manager/qt/pictures.h"
#include "manager/qt/windows.h"

#include "manager/cli/arguments.h"
#include "manager/cli/report.h"
#include "manager/view/texts.h"
#include "system/displays.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
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

/// Whether there is a problem, which is printed then.
bool isTold(const QString& problem) {
    if (!problem.isEmpty()) {
        warn(problem.toStdString());
    }
    return !problem.isEmpty();
}

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
    QApplication::setStyle(new ReadableStyle);
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
    Windows windows(options);
    const Guests guests([&windows](const WindowRequest& request) { windows.open(request); });
    windows.open(options.request);
    int status = exitSuccess;
    if (!options.pictures.empty()) {
        const auto files = windows.fontFiles();
        const auto end = [&status](bool areWritten) {
            status = areWritten ? exitSuccess : exitFailure;
            QApplication::quit();
        };
        if (!files.empty()) {
            files.front()->whenRead(
                [&options, end, window = files.front()](const QString& problem) {
                    end(!isTold(problem) && takePictures(*window, options.pictures));
                });
        } else {
            windows.library()->whenShown([&windows, &options, end](const QString& problem) {
                end(!isTold(problem) && takePictures(*windows.library(), options.pictures));
            });
        }
    }
    QApplication::exec();
    return status;
}
