// SPDX-License-Identifier: MIT
#include "manager/qt/listposition.h"

#include <QItemSelection>
#include <QScrollBar>

#include <utility>

namespace manager {

namespace {

ListPlace placeOf(const FaceModel& model, const QModelIndex& index) {
    ListPlace place;
    if (index.isValid()) {
        const QModelIndex family = index.parent().isValid() ? index.parent() : index;
        place.family = model.nameOf(static_cast<std::size_t>(family.row()));
        if (family != index) {
            place.face = model.listing().view().table.faces()[model.facesOf(index).front()].id;
        }
    }
    return place;
}

/// The row of a face; an invalid index: it is not shown.
QModelIndex indexOf(const FaceModel& model, FaceId face) {
    const auto row = model.listing().view().table.rowOf(face);
    return row ? model.indexOfFace(*row) : QModelIndex();
}

} // namespace

ListPosition positionOf(const QTreeView& list, const FaceModel& model) {
    ListPosition now;
    const int count = model.rowCount();
    for (int row = 0; row < count; ++row) {
        if (list.isExpanded(model.index(row, 0))) {
            now.expanded.insert(model.nameOf(static_cast<std::size_t>(row)));
        }
    }
    now.current = placeOf(model, list.currentIndex());
    now.isCurrentSeen = list.visualRect(list.currentIndex()).intersects(list.viewport()->rect());
    for (const QModelIndex& index : list.selectionModel()->selectedRows()) {
        ListPlace place = placeOf(model, index);
        if (place.face) {
            now.chosenFaces.push_back(*place.face);
        } else {
            now.chosenFamilies.insert(std::move(place.family));
        }
    }
    const QModelIndex top = list.indexAt({0, 0});
    now.top = placeOf(model, top);
    now.topOffset = list.visualRect(top).top();
    return now;
}

void restore(QTreeView& list, const FaceModel& model, const ListPosition& position) {
    QModelIndex current;
    QModelIndex top;
    QItemSelection chosen;
    int firstChosen = -1; // of a range of families; -1: none is open
    const int count = model.rowCount();
    const std::string end;
    for (int row = 0; row <= count; ++row) {
        const std::string& family =
            row == count ? end : model.nameOf(static_cast<std::size_t>(row));
        const bool isChosen = row < count && position.chosenFamilies.contains(family);
        if (isChosen && firstChosen < 0) {
            firstChosen = row;
        } else if (!isChosen && firstChosen >= 0) {
            chosen.append(
                QItemSelectionRange(model.index(firstChosen, 0), model.index(row - 1, 0)));
            firstChosen = -1;
        }
        if (row == count) {
            break;
        }
        if (position.expanded.contains(family)) {
            list.setExpanded(model.index(row, 0), true);
        }
        current = family == position.current.family ? model.index(row, 0) : current;
        top = family == position.top.family ? model.index(row, 0) : top;
    }
    for (const FaceId id : position.chosenFaces) {
        if (const QModelIndex face = indexOf(model, id); face.isValid()) {
            chosen.append(QItemSelectionRange(face));
        }
    }
    const auto refine = [&](QModelIndex& index, const ListPlace& place) {
        if (const QModelIndex face = place.face ? indexOf(model, *place.face) : QModelIndex();
            face.isValid()) {
            index = face;
        }
    };
    refine(current, position.current);
    refine(top, position.top);
    if (current.isValid()) {
        list.selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
        list.selectionModel()->select(chosen.isEmpty() ? QItemSelection(current, current) : chosen,
                                      QItemSelectionModel::ClearAndSelect);
    }
    if (top.isValid()) {
        list.scrollTo(top, QAbstractItemView::PositionAtTop);
        list.verticalScrollBar()->setValue(list.verticalScrollBar()->value() - position.topOffset);
    }
    if (current.isValid() && position.isCurrentSeen) {
        list.scrollTo(current);
    }
}

} // namespace manager
