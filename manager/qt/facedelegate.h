// SPDX-License-Identifier: MIT
// Draws a row of the list: what it is called, its state by shape, colour and word, and a line in
// its own face.
#pragma once

#include "manager/qt/facemodel.h"
#include "manager/qt/samples.h"

#include <QStyledItemDelegate>
#include <QTimer>
#include <QTreeView>

namespace manager {

/// What of a row's second line fits into `width`: its lesser part goes before the other is cut.
[[nodiscard]] QString belowIn(const ListRow& row, const QFontMetrics& metrics, int width);

/// [main-thread]
class FaceDelegate : public QStyledItemDelegate {
public:
    FaceDelegate(FaceModel& model, preview::Faces& faces, QTreeView& view);

    /// What is drawn in each face; empty: its family's name.
    void setText(const QString& text);
    void setPixels(unsigned pixels);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintNames(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area,
                    const ListRow& row) const;
    void paintSample(QPainter& painter, const QStyleOptionViewItem& option, const QRect& area,
                     const ListRow& row) const;

    FaceModel& model_;
    QTreeView& view_;
    std::string text_;
    unsigned pixels_ = 24;
    mutable Samples samples_;
    QTimer scrolled_; ///< once the view stands where it was scrolled to
};

} // namespace manager
