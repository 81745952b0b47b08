// SPDX-License-Identifier: MIT
// Families and their faces, as the list shows and a screen reader reads them.
#pragma once

#include "manager/view/facelisting.h"

#include <QAbstractItemModel>
#include <QString>

#include <set>
#include <vector>

class QMimeData;

namespace manager {

/// A row of the list.
struct ListRow {
    QString title;
    QString detail;                ///< "4 styles", "TrueType, variable"
    QString state;                 ///< the state's word
    std::optional<FaceState> same; ///< nothing: its faces differ
    bool isAway = false;           ///< though it can be seen
    std::optional<FaceRow> sample; ///< the face that stands for it; nothing: there is none
    bool isFamily = false;
    bool isDetailFirst =
        false; ///< it matters more than the state: why a font may do, where a copy is

    [[nodiscard]] QString below() const {
        return isDetailFirst ? detail + QStringLiteral(" · ") + state
                             : state + QStringLiteral(" · ") + detail;
    }
};

[[nodiscard]] QString wordOf(FaceState state);

/// [main-thread] Rows of two levels. Only whole listings come and go.
class FaceModel : public QAbstractItemModel {
public:
    using QAbstractItemModel::QAbstractItemModel;

    void show(std::shared_ptr<const LibraryView> view, ListFilter filter);
    [[nodiscard]] const FaceListing& listing() const { return listing_; }

    [[nodiscard]] ListRow row(const QModelIndex& index) const;
    /// What a family, or a drawing's font, is called, by its place.
    [[nodiscard]] const std::string& nameOf(std::size_t family) const;
    /// The faces behind a row, in order.
    [[nodiscard]] std::span<const FaceRow> facesOf(const QModelIndex& index) const;
    /// Those that are switched with a row: of a drawing's font the best.
    [[nodiscard]] std::span<const FaceRow> facesToSwitch(const QModelIndex& index) const;
    /// Marks a face that cannot be drawn, or can again, until other rows are shown.
    void setDamaged(FaceRow face, bool damaged);
    /// Where a face is shown under a family, or a drawing's font; an invalid index: not there.
    [[nodiscard]] QModelIndex indexOfFace(FaceRow face, const QModelIndex& family) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& /*parent*/ = {}) const override { return 1; }
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    /// The place of an index's family among those shown.
    static std::size_t familyOf(const QModelIndex& index);
    [[nodiscard]] bool isDrawing() const { return listing_.filter().isDrawing; }
    [[nodiscard]] ListRow familyRow(std::size_t family) const;
    [[nodiscard]] ListRow askedRow(std::size_t font) const;
    /// By its place in the listing.
    [[nodiscard]] ListRow faceRow(std::size_t place) const;

    FaceListing listing_;
    std::set<FaceRow> damaged_;
};

} // namespace manager
