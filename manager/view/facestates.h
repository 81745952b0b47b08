// SPDX-License-Identifier: MIT
// Whether each face of the library can be seen, and why.
#pragma once

#include "manager/activation/activation.h"
#include "manager/view/facetable.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

enum class FaceState : std::uint8_t {
    Inactive,
    Active,
    Conflicting, ///< active or shown, and so is another container's face of the same name
    Shown,       ///< by the desktop, without the manager
    Away,        ///< its folder is
};
inline constexpr std::size_t faceStates = 5;

/// For people, in their language: "by hand, until logout".
[[nodiscard]] std::string whyOf(std::span<const Reason> reasons);

/// [any-thread] A value that does not change once it was made.
class FaceStates {
public:
    FaceStates() = default;
    FaceStates(const FaceTable& table, std::span<const ActiveContainer> active);

    [[nodiscard]] FaceState of(FaceRow row) const { return states_[row]; }
    /// Whether its file is active, which others of its container may be without it.
    [[nodiscard]] bool isActive(FaceRow row) const { return active_[row]; }
    /// Whether its folder is away; then the face may be active nevertheless.
    [[nodiscard]] bool isAway(FaceRow row) const { return away_[row]; }
    [[nodiscard]] bool is(FaceRow row, FaceState state) const {
        return states_[row] == state || (state == FaceState::Away && away_[row]);
    }
    /// How many faces are in a state; one that is active and away counts as both.
    [[nodiscard]] std::size_t count(FaceState state) const {
        return counts_[static_cast<std::size_t>(state)];
    }
    /// Why something of a container is active; empty: nothing is.
    [[nodiscard]] std::span<const Reason> why(ContainerId id) const;

private:
    std::vector<FaceState> states_; ///< by row
    std::vector<bool> active_;      ///< by row
    std::vector<bool> away_;        ///< by row
    std::array<std::size_t, faceStates> counts_{};
    std::unordered_map<std::int32_t, std::vector<Reason>> why_;
};

} // namespace manager
