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

/// The row of a face under its family; an invalid index: it is not there.
QModelIndex indexOf(const FaceModel& model, const QModelIndex& family, FaceId face) {
    const auto row = model.listing().view().table.rowOf(face);
    return row ? model.indexOfFace(*row, family) : QModelIndex();
}

/// What was chosen of the rows there are now; of families side by side one range.
class Choice {
public:
    explicit Choice(const FaceModel& model) : model_(model) {}

    void add(int row, const ListPosition::Chosen* chosen) {
        if (chosen != nullptr && chosen->family) {
            first_ = first_ < 0 ? row : first_;
        } else {
            close(row);
        }
        for (std::size_t i = 0; chosen != nullptr && i < chosen->faces.size(); ++i) {
            const QModelIndex face = indexOf(model_, model_.index(row, 0), chosen->faces[i]);
            if (face.isValid()) {
                rows_.append(QItemSelectionRange(face));
            }
        }
    }
    /// `row` is the one after the last.
    QItemSelection end(int row) {
        close(row);
        return rows_;
    }

private:
    void close(int row) {
        if (first_ >= 0) {
            rows_.append(QItemSelectionRange(model_.index(first_, 0), model_.index(row - 1, 0)));
            first_ = -1;
        }
    }

    const FaceModel& model_;
    QItemSelection rows_;
    int first_ = -1; ///< family of a range; -1: none is open
};

} // namespace

ListPosition positionOf(const QTreeView& list, const FaceModel& model) {
    ListPosition now;
    now.current = placeOf(model, list.currentIndex());
    now.isCurrentSeen = list.visualRect(list.currentIndex()).intersects(list.viewport()->rect());
    for (const QModelIndex& index : list.selectionModel()->selectedRows()) {
        const ListPlace place = placeOf(model, index);
        ListPosition::Chosen& chosen = now.chosen[place.family];
        if (place.face) {
            chosen.faces.push_back(*place.face);
        } else {
            chosen.family = true;
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
    Choice choice(model);
    const auto find = [&](QModelIndex& found, const ListPlace& place, int row) {
        const QModelIndex family = model.index(row, 0);
        const QModelIndex face = place.face ? indexOf(model, family, *place.face) : QModelIndex();
        found = face.isValid() ? face : family;
    };
    const int count = model.rowCount();
    for (int row = 0; row < count; ++row) {
        const std::string& family = model.nameOf(static_cast<std::size_t>(row));
        const auto chosen = position.chosen.find(family);
        choice.add(row, chosen == position.chosen.end() ? nullptr : &chosen->second);
        if (family == position.current.family) {
            find(current, position.current, row);
        }
        if (family == position.top.family) {
            find(top, position.top, row);
        }
    }
    const QItemSelection chosen = choice.end(count);
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
