// SPDX-License-Identifier: MIT
#include "manager/view/facecopies.h"

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <unordered_map>

namespace manager {

FaceCopies::FaceCopies(const FaceTable& table, const std::vector<std::vector<FileCopy>>& files) {
    std::unordered_map<std::string, std::size_t> groupOf;
    for (std::size_t group = 0; group < files.size(); ++group) {
        for (const FileCopy& copy : files[group]) {
            groupOf.emplace(copy.path, group);
        }
    }
    if (groupOf.empty()) {
        return;
    }
    groups_.resize(files.size());
    const auto all = table.faces();
    for (FaceRow row = 0; row < all.size(); ++row) {
        const auto group = groupOf.find(table.pathOf(all[row]));
        if (group != groupOf.end()) {
            groups_[group->second].push_back(row);
        }
    }
    std::erase_if(groups_, [&](const std::vector<FaceRow>& rows) {
        return std::all_of(rows.begin(), rows.end(), [&](FaceRow row) {
            return all[row].container == all[rows.front()].container;
        });
    });
    for (const auto& rows : groups_) {
        for (const FaceRow row : rows) {
            faces_.push_back(all[row].id);
        }
    }
    std::sort(faces_.begin(), faces_.end());
}

std::vector<ContainerId> FaceCopies::othersOf(const FaceTable& table,
                                              std::span<const ContainerId> kept) const {
    const auto all = table.faces();
    const std::set<ContainerId> staying(kept.begin(), kept.end());
    const auto isKept = [&](FaceRow row) { return staying.contains(all[row].container); };
    std::map<ContainerId, std::size_t> whole; // their numbers of faces
    std::map<ContainerId, std::size_t> shared;
    for (const auto& rows : groups_) {
        if (std::any_of(rows.begin(), rows.end(), isKept)) {
            for (const FaceRow row : rows) {
                ++shared[all[row].container];
            }
        }
    }
    for (const ListedFace& face : all) {
        if (shared.contains(face.container)) {
            ++whole[face.container];
        }
    }
    std::vector<ContainerId> others;
    for (const auto& [id, count] : shared) {
        if (whole[id] == count && !staying.contains(id)) {
            others.push_back(id);
        }
    }
    return others;
}

} // namespace manager
