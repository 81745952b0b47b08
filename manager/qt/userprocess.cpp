// SPDX-License-Identifier: MIT
#include "manager/qt/userprocess.h"

#include "system/translation.h"

#include <QDesktopServices>
#include <QProcess>
#include <QUrl>

namespace manager {

QProcessEnvironment userEnvironment() {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (const auto language = sys::userLanguage()) {
        environment.insert(QStringLiteral("LANGUAGE"), QString::fromStdString(*language));
    } else {
        environment.remove(QStringLiteral("LANGUAGE"));
    }
    return environment;
}

void openFolder(const QString& folder) {
    QProcess opener;
    opener.setProgram(QStringLiteral("xdg-open"));
    opener.setArguments({folder});
    opener.setProcessEnvironment(userEnvironment());
    if (!opener.startDetached()) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(folder));
    }
}

} // namespace manager
