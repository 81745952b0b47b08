// SPDX-License-Identifier: MIT
// Where the user is in the list, kept over a change of its rows.
#pragma once

#include "manager/qt/facemodel.h"

#include <QTreeView>

#include <optional>
#include <set>
#include <string>

namespace manager {

struct ListPosition {
    std::set<std::string> expanded; ///< families
    std::string family;             ///< the current row's; empty: there is none
    std::optional<FaceId> face;     ///< nothing: the family's own row
};

[[nodiscard]] ListPosition positionOf(const QTreeView& list, const FaceModel& model);
/// What is gone is passed over.
void restore(QTreeView& list, const FaceModel& model, const ListPosition& position);

} // namespace manager
