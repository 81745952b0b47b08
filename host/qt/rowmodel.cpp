// SPDX-License-Identifier: MIT
// Rows as indices, words and pictures.
#include "host/qt/rowmodel.h"

#include "host/qt/paintercanvas.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace host {

RowModel::RowModel(Dialogs& dialogs, Tree& tree, QObject* parent)
    : QAbstractItemModel(parent), dialogs_(dialogs), tree_(tree), revision_(tree.revision()) {}

bool RowModel::takeOver() {
    if (isCurrent()) {
        return false;
    }
    beginResetModel();
    revision_ = tree_.revision();
    collect();
    endResetModel();
    return true;
}

void RowModel::setFilter(const QString& text) {
    beginResetModel();
    revision_ = tree_.revision();
    filter_ = text;
    collect();
    endResetModel();
}

void RowModel::collect() {
    filtered_.clear();
    if (filter_.isEmpty()) {
        return;
    }
    for (const std::unique_ptr<Row>& row : tree_.top().rows) {
        if (QString::fromStdString(row->text).contains(filter_, Qt::CaseInsensitive)) {
            filtered_.push_back(row.get());
        }
    }
}

Row* RowModel::row(const QModelIndex& index) const {
    return index.isValid() && isCurrent() ? static_cast<Row*>(index.internalPointer()) : nullptr;
}

QModelIndex RowModel::indexOf(Row& row) const {
    if (!isCurrent()) {
        return {};
    }
    if (filter_.isEmpty()) {
        return createIndex(static_cast<int>(row.list.indexOf(row)), 0, &row);
    }
    const auto found = std::find(filtered_.begin(), filtered_.end(), &row);
    return found != filtered_.end()
               ? createIndex(static_cast<int>(found - filtered_.begin()), 0, &row)
               : QModelIndex();
}

QString RowModel::words(Row& row) const {
    if (tree_.draw == nullptr) {
        return QString::fromStdString(row.text);
    }
    const ADMRect& list = tree_.item().bounds;
    RecordingCanvas canvas;
    dialogs_.draw(row, canvas, list.right - list.left, row.list.entryHeight);
    return QString::fromStdString(canvas.words());
}

QModelIndex RowModel::index(int place, int column, const QModelIndex& parent) const {
    if (column != 0 || place < 0 || place >= rowCount(parent)) {
        return {};
    }
    const auto at = static_cast<std::size_t>(place);
    if (!parent.isValid() && !filter_.isEmpty()) {
        return createIndex(place, 0, filtered_[at]);
    }
    const Row* const above = row(parent);
    const RowList& list = above != nullptr ? *above->children : tree_.top();
    return createIndex(place, 0, list.rows[at].get());
}

QModelIndex RowModel::parent(const QModelIndex& index) const {
    const Row* const below = row(index);
    return below != nullptr && below->list.parent != nullptr ? indexOf(*below->list.parent)
                                                             : QModelIndex();
}

int RowModel::rowCount(const QModelIndex& parent) const {
    if (!isCurrent()) {
        return 0;
    }
    if (!parent.isValid()) {
        return static_cast<int>(filter_.isEmpty() ? tree_.top().rows.size() : filtered_.size());
    }
    const RowList* const children = row(parent)->children.get();
    return children != nullptr ? static_cast<int>(children->rows.size()) : 0;
}

int RowModel::columnCount(const QModelIndex& /*parent*/) const {
    return 1;
}

QVariant RowModel::data(const QModelIndex& index, int role) const {
    Row* const of = row(index);
    // Typed letters look for the words, too.
    const bool asked = role == Qt::DisplayRole || role == Qt::AccessibleTextRole;
    return of != nullptr && asked ? QVariant(words(*of)) : QVariant();
}

RowDelegate::RowDelegate(Dialogs& dialogs, RowModel& model) : dialogs_(dialogs), model_(model) {}

int RowDelegate::offset(const Row& row) noexcept {
    constexpr int step = 48;
    constexpr int leastStep = 32; // rows below another are to be seen as such
    int result = 0;
    for (const RowList* list = &row.list; list->parent != nullptr; list = &list->parent->list) {
        result += std::max(step + list->indentation, leastStep);
    }
    return result;
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    if (model_.tree().draw == nullptr) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    Row* const row = model_.row(index);
    if (row == nullptr) {
        return;
    }
    QPalette palette = option.palette;
    palette.setCurrentColorGroup((option.state & QStyle::State_Active) != 0 ? QPalette::Active
                                                                            : QPalette::Inactive);
    painter->save();
    painter->setClipRect(option.rect, Qt::IntersectClip);
    painter->setFont(option.font);
    const QRect area = option.rect.adjusted(offset(*row), 0, 0, 0);
    PainterCanvas canvas(*painter, palette, QPalette::Base, area.topLeft());
    dialogs_.draw(*row, canvas, area.width(), area.height());
    painter->restore();
    if ((option.state & QStyle::State_HasFocus) != 0) {
        QStyleOptionFocusRect focus;
        focus.QStyleOption::operator=(option);
        focus.backgroundColor = palette.color(QPalette::Base);
        option.widget->style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, painter,
                                              option.widget);
    }
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    constexpr int margin = 2;
    constexpr int leastMargin = 1;
    const int line = option.fontMetrics.lineSpacing();
    const Row* const row = model_.row(index);
    if (row == nullptr || model_.tree().draw == nullptr) {
        return QStyledItemDelegate::sizeHint(option, index).expandedTo({0, line + 2 * margin});
    }
    return {0, std::max(row->list.entryHeight, line + 2 * leastMargin)};
}

} // namespace host
