// SPDX-License-Identifier: MIT
// What is to become, or has become, of the sets of containers, as the commands' documents have it.
#pragma once

#include "manager/activation/activation.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace manager {

struct WantedChange {
    ContainerId id{};
    SetChange change = {};
    /// All of it is to be active, by hand, or none of it; nullopt: as `change` says.
    std::optional<bool> active = {};
};

/// A list of `{id, reasons: {added, removed}, files: {added, removed}}`, of those that have
/// changed. A reason is a list of words: its kind, as in the records of sets, and what belongs to
/// it. Files are told by name.
[[nodiscard]] nlohmann::ordered_json changesOf(std::span<const ContainerId> ids,
                                               std::span<const ActivationOutcome> outcomes);

/// The changes of such a list, in which `{id, active}` may stand, too. Throws Error (the place in
/// it): it is none.
[[nodiscard]] std::vector<WantedChange> readChanges(std::string_view text);

} // namespace manager
