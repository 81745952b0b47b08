// SPDX-License-Identifier: MIT
// The rows of a list as the toolkit's views see them, and how they are drawn.
#pragma once

#include "host/adm/dialogs.h"

#include <QAbstractItemModel>
#include <QString>
#include <QStyledItemDelegate>

#include <cstdint>
#include <vector>

namespace host {

/// [main-thread] Shows what the tree had when it was last taken over. While the tree has other rows
/// than that, there are none here: no view may look at rows that have gone.
class RowModel : public QAbstractItemModel {
public:
    /// `dialogs` and `tree` outlive it.
    RowModel(Dialogs& dialogs, Tree& tree, QObject* parent);

    Tree& tree() const noexcept { return tree_; }
    /// Takes the tree's rows over. False when nothing has come or gone since.
    bool takeOver();
    /// Shows only those rows of a flat list that have `text` in them.
    void setFilter(const QString& text);

    /// nullptr for an index of no row.
    Row* row(const QModelIndex& index) const;
    QModelIndex indexOf(Row& row) const;
    /// What a row says to someone who cannot see it.
    QString words(Row& row) const;

    QModelIndex index(int place, int column, const QModelIndex& parent) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent) const override;
    int columnCount(const QModelIndex& parent) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    bool isCurrent() const noexcept { return revision_ == tree_.revision(); }
    void collect();

    Dialogs& dialogs_;
    Tree& tree_;
    std::uint64_t revision_;
    QString filter_;
    std::vector<Row*> filtered_; ///< in use while there is a filter
};

/// [main-thread] Draws rows by the plug-in's routine, where it has one.
class RowDelegate : public QStyledItemDelegate {
public:
    /// `dialogs` and `model` outlive it.
    RowDelegate(Dialogs& dialogs, RowModel& model);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    /// How far a row drawn by the plug-in stands from the list's left edge.
    static int offset(const Row& row) noexcept;

private:
    Dialogs& dialogs_;
    RowModel& model_;
};

} // namespace host
