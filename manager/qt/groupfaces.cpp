// SPDX-License-Identifier: MIT
#include "manager/qt/groupfaces.h"

#include <cstddef>
#include <unordered_map>

namespace manager {

namespace {

struct Membership {
    std::size_t group;
    const GroupMember* member;
};

} // namespace

std::vector<std::vector<FaceRow>> facesOf(const FaceTable& table, const Groups& groups) {
    std::vector<std::vector<FaceRow>> result(groups.size());
    std::unordered_map<ContainerId, std::vector<Membership>> memberships;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        for (const GroupMember& member : groups[i].members) {
            memberships[member.id].push_back({i, &member});
        }
    }
    if (memberships.empty()) {
        return result;
    }
    const auto faces = table.faces();
    for (FaceRow row = 0; row < faces.size(); ++row) {
        const auto known = memberships.find(faces[row].container);
        if (known == memberships.end()) {
            continue;
        }
        for (const auto& [group, member] : known->second) {
            if (member->files.empty() || member->files.contains(faces[row].file)) {
                result[group].push_back(row);
            }
        }
    }
    return result;
}

} // namespace manager
