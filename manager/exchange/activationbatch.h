// SPDX-License-Identifier: MIT
// The containers that one command activates.
#pragma once

#include "manager/exchange/exchange.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

namespace manager {

/// Gathers the containers that a command activates, each once, and activates them together.
class ActivationBatch {
public:
    void add(const Container& container);

    /// Activates them, and tells the answer what was done and what failed. Throws Error when the
    /// index cannot be read.
    void run(Library& library, Activation& activation, Answer& answer);

    [[nodiscard]] bool holds(ContainerId id) const {
        return positions_.contains(static_cast<std::int32_t>(id));
    }

    /// Whether a file of a container in the batch is active now; every file when no name is given.
    [[nodiscard]] bool succeeded(ContainerId id, const std::string& fileName) const;

private:
    std::vector<Container> containers_;
    std::unordered_map<std::int32_t, std::size_t> positions_;
    std::vector<ActivationOutcome> outcomes_;
};

} // namespace manager
