// SPDX-License-Identifier: MIT
// What of the chosen rows of the list is switched: of a family all that belongs to it, of a face
// its file alone.
#pragma once

#include "manager/qt/facemodel.h"

#include <QJsonArray>

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace manager {

struct SetChoice {
    bool on = false; ///< or off
    std::set<std::int32_t> containers;
    std::map<std::int32_t, std::set<std::string>> files; ///< names, by container

    [[nodiscard]] bool isEmpty() const { return containers.empty() && files.empty(); }
    /// As Deeds take it.
    [[nodiscard]] QJsonArray sets() const;
};

/// What can be switched on or off of these rows, and is not so yet.
[[nodiscard]] SetChoice choiceOf(const FaceModel& model, const QModelIndexList& rows, bool on);

} // namespace manager
