// SPDX-License-Identifier: MIT
// What can be done in the window.
#include "manager/qt/librarywindow.h"
#include "manager/qt/text.h"

#include "manager/view/texts.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QJsonArray>
#include <QMenuBar>
#include <QStatusBar>

#include <algorithm>
#include <iterator>
#include <set>
#include <utility>

namespace manager {

void LibraryWindow::makeActions() {
    QMenu* const file = menuBar()->addMenu(text(translated("&Library")));
    file->addAction(text(translated("&Add Folder…")), QKeySequence::Open, this,
                    [this] { addFolder(); });
    file->addAction(text(translated("Add &Font Files…")), this, [this] { addFiles(); });
    file->addAction(text(translated("&Scan Folders")), QKeySequence::Refresh, this, [this] {
        deeds_.run({QStringLiteral("scan"), QStringLiteral("--json")});
    });
    file->addSeparator();
    file->addAction(text(translated("&Close")), QKeySequence::Close, this, &QWidget::close);
    QMenu* const edit = menuBar()->addMenu(text(translated("&Edit")));
    // Both can always be asked for: what is to be undone may be under way.
    QAction* const undo =
        edit->addAction(text(translated("&Undo")), &deeds_, [this] { deeds_.undo(); });
    undo->setShortcut(QKeySequence::Undo);
    connect(&deeds_.undoStack(), &QUndoStack::undoTextChanged, undo, [undo](const QString& what) {
        undo->setText(what.isEmpty() ? text(translated("&Undo"))
                                     : text(translated("&Undo %1")).arg(what));
    });
    QAction* const redo =
        edit->addAction(text(translated("&Redo")), &deeds_, [this] { deeds_.redo(); });
    redo->setShortcuts({Qt::CTRL | Qt::SHIFT | Qt::Key_Z, Qt::CTRL | Qt::Key_Y});
    connect(&deeds_.undoStack(), &QUndoStack::redoTextChanged, redo, [redo](const QString& what) {
        redo->setText(what.isEmpty() ? text(translated("&Redo"))
                                     : text(translated("&Redo %1")).arg(what));
    });
    edit->addSeparator();
    edit->addAction(text(translated("&Find")), QKeySequence::Find, this, [this] {
        search_->setFocus();
        search_->selectAll();
    });
    QMenu* const fonts = menuBar()->addMenu(text(translated("F&onts")));
    activate_ = fonts->addAction(text(translated("&Activate")), this,
                                 [this] { switchChosen(choice(true)); });
    activate_->setShortcut(Qt::CTRL | Qt::Key_Return);
    deactivate_ = fonts->addAction(text(translated("&Deactivate")), this,
                                   [this] { switchChosen(choice(false)); });
    deactivate_->setShortcut(Qt::CTRL | Qt::Key_Backspace);
    fonts->addSeparator();
    collect_ =
        fonts->addAction(text(translated("Collect for &Output…")), this, [this] { collect(); });
    list_->addActions({activate_, deactivate_, collect_});
    makeGroupActions(*fonts);
    list_->setContextMenuPolicy(Qt::ActionsContextMenu);
}

SetChoice LibraryWindow::choice(bool on) const {
    return choiceOf(model_, list_->selectionModel()->selectedRows(), on);
}

void LibraryWindow::switchChosen(const SetChoice& choice) {
    if (!choice.isEmpty()) {
        tellSwitching(choice.on);
        deeds_.change(choice.on, choice.sets());
    }
}

void LibraryWindow::switchNamed(bool on, const QStringList& containers) {
    if (!containers.empty()) {
        tellSwitching(on);
        deeds_.change(on, containers);
    }
}

void LibraryWindow::tellSwitching(bool on) {
    statusBar()->showMessage(text(on ? translated("Activating…") : translated("Deactivating…")));
}

void LibraryWindow::toggleChosen() {
    const SetChoice on = choice(true);
    const SetChoice off = choice(false);
    if (on.isEmpty() && off.isEmpty()) {
        tell(whyNotSwitched());
    } else {
        switchChosen(on.isEmpty() ? off : on);
    }
}

void LibraryWindow::addFolder() {
    const QString folder = QFileDialog::getExistingDirectory(
        this, text(translated("Add a folder of fonts to the library")));
    if (!folder.isEmpty()) {
        add({folder});
    }
}

void LibraryWindow::addFiles() {
    const QStringList files = QFileDialog::getOpenFileNames(
        this, text(translated("Add copies of font files to the library")), {},
        text(translated("Fonts")) +
            QStringLiteral(" (*.ttf *.otf *.ttc *.otc *.pfb *.pfa *.t1 *.zip *.7z *.tar "
                           "*.tar.* *.tgz *.tbz2 *.txz)"));
    if (!files.isEmpty()) {
        add(files);
    }
}

void LibraryWindow::add(const QStringList& paths) {
    statusBar()->showMessage(text(translated("Reading the fonts…")));
    deeds_.run(QStringList{QStringLiteral("add"), QStringLiteral("--json"), QStringLiteral("--")} +
                   paths,
               [this](const QJsonObject& done) {
                   const QJsonObject scan = done.value(QStringLiteral("scan")).toObject();
                   if (const auto read = scan.value(QStringLiteral("read")).toInteger(); read > 0) {
                       tell(text(translated("%1 font file added", "%1 font files added",
                                            static_cast<std::size_t>(read))));
                   }
               });
}

void LibraryWindow::collect() {
    const QStringList fonts = toWords(chosenFonts(), model_.listing().view().table);
    // The command makes the folder, and refuses one that is there.
    const QString folder =
        QFileDialog::getSaveFileName(this, text(translated("Copy the fonts to a new folder")),
                                     QDir::home().filePath(text(translated("Fonts"))), {}, nullptr,
                                     QFileDialog::DontConfirmOverwrite);
    if (folder.isEmpty()) {
        return;
    }
    statusBar()->showMessage(text(translated("Copying the fonts…")));
    deeds_.run(QStringList{QStringLiteral("collect"), QStringLiteral("--json"),
                           QStringLiteral("--to"), folder, QStringLiteral("--")} +
                   fonts,
               [this, folder](const QJsonObject& done) {
                   const auto count = done.value(QStringLiteral("collected")).toArray().size();
                   if (count != 0 && done.value(QStringLiteral("problems")).toArray().isEmpty()) {
                       tell(text(translated("%1 font file copied to %2, with a list of licences",
                                            "%1 font files copied to %2, with a list of licences",
                                            static_cast<std::size_t>(count)))
                                .arg(folder));
                   }
               });
}

void LibraryWindow::tell(const QString& text) {
    statusBar()->showMessage(text);
    letHear(text);
}

} // namespace manager
