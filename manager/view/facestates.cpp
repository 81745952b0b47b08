// SPDX-License-Identifier: MIT
#include "manager/view/facestates.h"

#include "manager/view/texts.h"

#include <algorithm>

namespace manager {

std::string whyOf(std::span<const Reason> reasons) {
    std::string why;
    for (const Reason& reason : reasons) {
        why += (why.empty() ? "" : ", ") + describeIn(reason, translated);
    }
    return why;
}

FaceStates::FaceStates(const FaceTable& table, std::span<const ActiveContainer> active) {
    std::unordered_map<std::int32_t, const ActiveContainer*> sets;
    for (const ActiveContainer& container : active) {
        why_.emplace(static_cast<std::int32_t>(container.id), container.reasons);
        sets.emplace(static_cast<std::int32_t>(container.id), &container);
    }
    const std::span<const ListedFace> faces = table.faces();
    states_.reserve(faces.size());
    active_.reserve(faces.size());
    away_.reserve(faces.size());
    // Who shows a name; nobody in particular once several do.
    std::unordered_map<std::uint64_t, ContainerId> shownBy;
    constexpr ContainerId several{};
    for (const ListedFace& face : faces) {
        const auto set = sets.find(static_cast<std::int32_t>(face.container));
        const bool isActive =
            set != sets.end() &&
            std::binary_search(set->second->files.begin(), set->second->files.end(), face.file);
        active_.push_back(isActive);
        away_.push_back(face.away);
        states_.push_back(isActive              ? FaceState::Active
                          : face.away           ? FaceState::Away
                          : face.shownByDesktop ? FaceState::Shown
                                                : FaceState::Inactive);
        if ((isActive || (face.shownByDesktop && !face.away)) && face.name != 0) {
            const auto [place, isFirst] = shownBy.emplace(face.name, face.container);
            if (!isFirst && place->second != face.container) {
                place->second = several;
            }
        }
    }
    for (std::size_t row = 0; row < faces.size(); ++row) {
        FaceState& state = states_[row];
        if (state == FaceState::Active || state == FaceState::Shown) {
            const auto place = shownBy.find(faces[row].name);
            if (place != shownBy.end() && place->second == several) {
                state = FaceState::Conflicting;
            }
        }
        ++counts_[static_cast<std::size_t>(state)];
        if (away_[row] && state != FaceState::Away) {
            ++counts_[static_cast<std::size_t>(FaceState::Away)];
        }
    }
}

std::span<const Reason> FaceStates::why(ContainerId id) const {
    const auto place = why_.find(static_cast<std::int32_t>(id));
    return place == why_.end() ? std::span<const Reason>() : std::span(place->second);
}

} // namespace manager
