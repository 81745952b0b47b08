// SPDX-License-Identifier: MIT
#include "manager/qt/listposition.h"

namespace manager {

ListPosition positionOf(const QTreeView& list, const FaceModel& model) {
    ListPosition now;
    const int count = model.rowCount();
    for (int row = 0; row < count; ++row) {
        const QModelIndex family = model.index(row, 0);
        if (list.isExpanded(family)) {
            now.expanded.insert(model.data(family, Qt::DisplayRole).toString());
        }
    }
    const QModelIndex current = list.currentIndex();
    if (current.isValid()) {
        const QModelIndex family = current.parent().isValid() ? current.parent() : current;
        now.family = model.data(family, Qt::DisplayRole).toString();
        if (family != current) {
            now.face = model.listing().view().table.faces()[model.facesOf(current).front()].id;
        }
    }
    return now;
}

void restore(QTreeView& list, const FaceModel& model, const ListPosition& position) {
    const int count = model.rowCount();
    QModelIndex current;
    for (int row = 0; row < count; ++row) {
        const QModelIndex family = model.index(row, 0);
        const QString name = model.data(family, Qt::DisplayRole).toString();
        if (position.expanded.contains(name)) {
            list.setExpanded(family, true);
        }
        if (name == position.family) {
            current = family;
        }
    }
    if (position.face) {
        if (const auto row = model.listing().view().table.rowOf(*position.face)) {
            if (const QModelIndex face = model.indexOfFace(*row); face.isValid()) {
                current = face;
            }
        }
    }
    if (current.isValid()) {
        list.setCurrentIndex(current);
        list.scrollTo(current);
    }
}

} // namespace manager
