// SPDX-License-Identifier: MIT
// Where the user is in the list, kept over a change of its rows.
#pragma once

#include "manager/qt/facemodel.h"

#include <QTreeView>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace manager {

/// A row, whatever its number will be.
struct ListPlace {
    std::string family = {};         ///< its name; empty: there is no such row
    std::optional<FaceId> face = {}; ///< nothing: the family's own row
};

struct ListPosition {
    struct Chosen {
        bool family = false; ///< its own row
        std::vector<FaceId> faces = {};
    };
    ListPlace current = {};
    bool isCurrentSeen = false;
    std::map<std::string, Chosen> chosen = {}; ///< by family
    ListPlace top = {};                        ///< the row at the list's upper edge
    int topOffset = 0; ///< of that row's from the list's, in pixels; not above 0
};

[[nodiscard]] ListPosition positionOf(const QTreeView& list, const FaceModel& model);
/// What is gone is passed over. What is seen stays where it is, unless its row has gone.
void restore(QTreeView& list, const FaceModel& model, const ListPosition& position);

} // namespace manager
