// SPDX-License-Identifier: MIT
// Names that are written in the list of places, its keys, and fonts that are dropped on it.
#include "manager/qt/sidebar.h"

#include <QDragMoveEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTreeWidgetItemIterator>

namespace manager {

namespace {

/// Whether a key switches on or off; nullopt: neither.
std::optional<bool> switchOf(const QKeyEvent& key) {
    if (key.modifiers() != Qt::ControlModifier ||
        (key.key() != Qt::Key_Return && key.key() != Qt::Key_Backspace)) {
        return std::nullopt;
    }
    return key.key() == Qt::Key_Return;
}

} // namespace

QLineEdit* Sidebar::editor() const {
    return state() == EditingState ? qobject_cast<QLineEdit*>(indexWidget(currentIndex()))
                                   : nullptr;
}

void Sidebar::endEdit() {
    toEdit_.reset();
    if (QLineEdit* const open = editor(); open != nullptr) {
        commitData(open);
        closeEditor(open, QAbstractItemDelegate::NoHint);
    }
}

// A window that loses its focus, as to a menu that is just going, takes it from the editor: it
// comes back with the window.
void Sidebar::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    if (!isFilling_ && !isActiveWindow()) {
        toEdit_ = group();
    }
    QTreeWidget::closeEditor(editor, hint);
}

void Sidebar::editName(const GroupTitle& title) {
    toEdit_ = title;
    for (QTreeWidgetItemIterator item(this); *item != nullptr; ++item) {
        const auto target = targetOf(*item);
        if (target && target->kind == title.kind && target->name == title.name) {
            toEdit_.reset();
            setCurrentItem(*item);
            setFocus();
            editItem(*item, 0);
            return;
        }
    }
}

// The keys that switch what is chosen in the list, too.
bool Sidebar::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate && toEdit_) {
        editName(GroupTitle(*toEdit_));
    }
    if (event->type() == QEvent::ShortcutOverride && setName() &&
        switchOf(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QTreeWidget::event(event);
}

void Sidebar::keyPressEvent(QKeyEvent* event) {
    if (const auto on = switchOf(*event); on && setName()) {
        handlers_.switchAll(*on);
    } else {
        QTreeWidget::keyPressEvent(event);
    }
}

QStringList Sidebar::mimeTypes() const {
    return {QLatin1String(fontsType)};
}

void Sidebar::dragMoveEvent(QDragMoveEvent* event) {
    QTreeWidget::dragMoveEvent(event);
    if (!targetOf(itemAt(event->position().toPoint()))) {
        event->ignore();
    }
}

void Sidebar::dropEvent(QDropEvent* event) {
    const auto title = targetOf(itemAt(event->position().toPoint()));
    const FontChoice fonts = fontsIn(*event->mimeData());
    if (title && !fonts.empty()) {
        event->acceptProposedAction();
        handlers_.drop(*title, fonts);
    }
    setState(NoState);
    viewport()->update();
}

} // namespace manager
