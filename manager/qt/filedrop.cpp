// SPDX-License-Identifier: MIT
#include "manager/qt/filedrop.h"

#include "faces/fontfile.h"
#include "manager/cli/archivenames.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QMimeDatabase>
#include <QUrl>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace manager {

namespace {

QStringList localPaths(const QMimeData& data) {
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        if (url.isLocalFile()) {
            paths.push_back(url.toLocalFile());
        }
    }
    return paths;
}

bool isFontsByName(const QString& path) {
    const std::string name = path.toStdString();
    return faces::hasFontFileName(name) || hasArchiveName(name);
}

bool isAnyOfUse(const QStringList& paths) {
    return std::any_of(paths.begin(), paths.end(), [](const QString& path) {
        return isFontsByName(path) || QFileInfo(path).isDir() || isDrawing(path);
    });
}

} // namespace

bool isDrawing(const QString& path) {
    if (isFontsByName(path)) { // thousands of them need not be looked into
        return false;
    }
    const QMimeDatabase types;
    const auto isSvg = [](const QMimeType& type) {
        return type.inherits(QStringLiteral("image/svg+xml")) ||
               type.inherits(QStringLiteral("image/svg+xml-compressed"));
    };
    const QMimeType named = types.mimeTypeForFile(path, QMimeDatabase::MatchExtension);
    // Thousands of photographs need not be looked into either.
    const bool mayBe = named.isDefault() || named.inherits(QStringLiteral("text/plain"));
    return isSvg(named) ||
           (mayBe && isSvg(types.mimeTypeForFile(path, QMimeDatabase::MatchContent)));
}

FileDrop::FileDrop(QWidget& window, std::function<void(const QStringList&)> dropped)
    : QObject(&window), dropped_(std::move(dropped)) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool FileDrop::eventFilter(QObject* /*window*/, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) {
        return false;
    }
    auto& drop = *static_cast<QDropEvent*>(event);
    const QStringList paths = localPaths(*drop.mimeData());
    if (type == QEvent::DragEnter) { // files may have to be looked into: not with every move
        isOfUse_ = isAnyOfUse(paths);
    }
    if (!isOfUse_) {
        drop.ignore();
        return true;
    }
    drop.setDropAction(Qt::CopyAction); // what is dropped stays where it was
    drop.accept();
    if (type == QEvent::Drop) {
        dropped_(paths);
    }
    return true;
}

} // namespace manager
