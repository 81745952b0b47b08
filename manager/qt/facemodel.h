// SPDX-License-Identifier: MIT
// Families and their faces, as the list shows and a screen reader reads them.
#pragma once

#include "manager/view/facelisting.h"

#include <QAbstractItemModel>
#include <QString>

namespace manager {

/// A row of the list.
struct ListRow {
    QString title;
    QString detail;                ///< "4 styles", "TrueType, variable"
    QString state;                 ///< the state's word
    std::optional<FaceState> same; ///< nothing: its faces differ
    FaceRow sample = 0;            ///< the face that stands for it
    bool isFamily = false;
};

[[nodiscard]] QString wordOf(FaceState state);

/// [main-thread] Rows of two levels. Only whole listings come and go.
class FaceModel : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    void show(std::shared_ptr<const LibraryView> view, ListFilter filter);
    [[nodiscard]] const FaceListing& listing() const { return listing_; }

    [[nodiscard]] ListRow row(const QModelIndex& index) const;
    /// The faces behind a row, in order.
    [[nodiscard]] std::span<const FaceRow> facesOf(const QModelIndex& index) const;
    /// Where a face, or a family by its place in the table, is shown; an invalid index: nowhere.
    [[nodiscard]] QModelIndex indexOfFace(FaceRow face) const;
    [[nodiscard]] QModelIndex indexOfFamily(std::uint32_t family) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& /*parent*/ = {}) const override { return 1; }
    QVariant data(const QModelIndex& index, int role) const override;

private:
    /// The place of an index's family among those shown.
    static std::size_t familyOf(const QModelIndex& index);
    [[nodiscard]] ListRow familyRow(std::size_t family) const;
    [[nodiscard]] ListRow faceRow(FaceRow face) const;

    FaceListing listing_;
};

} // namespace manager
