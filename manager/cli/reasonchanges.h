// SPDX-License-Identifier: MIT
// What a command changed of the reasons of containers, as its document tells it and as it is taken
// back.
#pragma once

#include "manager/activation/activation.h"

#include <nlohmann/json.hpp>
#include <span>
#include <string_view>
#include <vector>

namespace manager {

struct ContainerChange {
    ContainerId id{};
    ReasonChange reasons;
};

/// A list of `{id, added, removed}`, of those that have changed. A reason is a list of words: its
/// kind, as in the records of sets, and what belongs to it.
[[nodiscard]] nlohmann::ordered_json changesOf(std::span<const ContainerId> ids,
                                               std::span<const ActivationOutcome> outcomes);

/// The changes of such a list. Throws Error (the place in it): it is none.
[[nodiscard]] std::vector<ContainerChange> readChanges(std::string_view text);

} // namespace manager
