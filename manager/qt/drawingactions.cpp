// SPDX-License-Identifier: MIT
// Drawings in the window: dropped on it, what they use is listed, and can be made a collection.
#include "manager/qt/filedrop.h"
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"
#include "manager/view/texts.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QMenu>
#include <QStatusBar>

#include <set>
#include <utility>

namespace manager {

namespace {

/// What a collection of their fonts is called.
QString nameOf(const QStringList& drawings) {
    const QFileInfo first(drawings.front());
    const QString name = drawings.size() == 1 ? first.completeBaseName() : first.dir().dirName();
    return name.isEmpty() ? text(translated("Drawing")) : name;
}

} // namespace

void LibraryWindow::bring(const QStringList& paths) {
    QStringList drawings;
    QStringList others;
    for (const QString& path : paths) {
        (isDrawing(path) ? drawings : others).push_back(path);
    }
    if (!others.empty()) {
        add(others);
    }
    if (!drawings.empty()) {
        readDrawings(drawings);
    }
}

void LibraryWindow::readDrawings(const QStringList& files) {
    isDrawingRead_ = false;
    statusBar()->showMessage(text(translated("Reading the drawing…")));
    deeds_.run(QStringList{QStringLiteral("read-drawings"), QStringLiteral("--json"),
                           QStringLiteral("--")} +
                   files,
               [this, files](const QJsonObject& read) { takeDrawings(files, read); });
}

void LibraryWindow::takeDrawings(const QStringList& files, const QJsonObject& read) {
    std::vector<CommandFont> fonts;
    const QJsonArray told = read.value(QStringLiteral("fonts")).toArray();
    for (const auto& item : told) {
        const QJsonObject font = item.toObject();
        const auto name = [&font](const char* key) {
            return font.value(QLatin1String(key)).toString().toStdString();
        };
        CommandFont& asked = fonts.emplace_back();
        asked.postScriptName = name("postScriptName");
        asked.familyName = name("family");
        asked.styleName = name("style");
    }
    isDrawingRead_ = true;
    if (!fonts.empty()) {
        showDrawing(std::move(fonts), nameOf(files));
        return;
    }
    const bool isRead = read.value(QStringLiteral("problems")).toArray().isEmpty() &&
                        read.contains(QStringLiteral("fonts"));
    if (isRead) {
        tell(text(translated("The drawing needs no fonts but those that it brings along.")));
    }
    tellShown(isRead ? QString() : problems_->text());
}

void LibraryWindow::tellShown(const QString& problem) {
    const bool isShown = view_ != nullptr && isDrawingRead_ && !isDrawingAwaited_;
    if (whenShown_ && (isShown || !problem.isEmpty())) {
        std::exchange(whenShown_, {})(problem);
    }
}

void LibraryWindow::showDrawing(std::vector<CommandFont> fonts, const QString& name) {
    drawingName_ = name;
    isDrawingAwaited_ = !fonts.empty();
    if (!isDrawingAwaited_) {
        sidebar_->choose({});
    }
    drawingNumber_ = reader_.setDrawing(std::move(fonts));
    collapsed_.clear();
    read();
    filters_->clear(); // they would hide what is asked for
    search_->clear();
    list_->setFocus();
}

FontChoice LibraryWindow::fontsOfDrawing() const {
    if (view_ == nullptr) {
        return {};
    }
    std::vector<FaceRow> rows;
    for (const AskedFont& font : view_->drawing) {
        if (font.choices.empty() || !font.choices.front().isExact) {
            continue;
        }
        if (const auto row = view_->table.rowOf(font.choices.front().face)) {
            rows.push_back(*row);
        }
    }
    return fontsOf(view_->table, rows);
}

void LibraryWindow::makeDrawingAction(QMenu& fonts) {
    makeSet_ = fonts.addAction(QString(), this, [this] {
        groupDeeds_.add({GroupKind::Collection, drawingName_.toStdString()}, fontsOfDrawing());
    });
    list_->addAction(makeSet_);
    sidebar_->addAction(makeSet_);
}

void LibraryWindow::showDrawingAction() {
    makeSet_->setVisible(sidebar_->place().kind == SidebarPlace::Kind::Drawing);
    // Until the drawing is there, those of the one before are.
    makeSet_->setEnabled(!isDrawingAwaited_ && !fontsOfDrawing().empty());
    makeSet_->setText(text(translated("&Make Collection \"%1\""))
                          .arg(QString(drawingName_).replace('&', QStringLiteral("&&"))));
}

} // namespace manager
