// SPDX-License-Identifier: MIT
#include "manager/qt/listposition.h"

namespace manager {

ListPosition positionOf(const QTreeView& list, const FaceModel& model) {
    ListPosition now;
    const int count = model.rowCount();
    for (int row = 0; row < count; ++row) {
        if (list.isExpanded(model.index(row, 0))) {
            now.expanded.insert(model.nameOf(static_cast<std::size_t>(row)));
        }
    }
    const QModelIndex current = list.currentIndex();
    if (current.isValid()) {
        const QModelIndex family = current.parent().isValid() ? current.parent() : current;
        now.family = model.nameOf(static_cast<std::size_t>(family.row()));
        if (family != current) {
            now.face = model.listing().view().table.faces()[model.facesOf(current).front()].id;
        }
    }
    return now;
}

void restore(QTreeView& list, const FaceModel& model, const ListPosition& position) {
    QModelIndex current;
    const int count = position.expanded.empty() && position.family.empty() ? 0 : model.rowCount();
    for (int row = 0; row < count; ++row) {
        const std::string& name = model.nameOf(static_cast<std::size_t>(row));
        if (position.expanded.contains(name)) {
            list.setExpanded(model.index(row, 0), true);
        }
        if (name == position.family) {
            current = model.index(row, 0);
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
