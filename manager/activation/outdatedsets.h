// SPDX-License-Identifier: MIT
// The active sets whose files the library has in other versions, or under other names, by now.
#pragma once

#include "manager/activation/activation.h"
#include "manager/library/library.h"

#include <cstddef>
#include <memory>
#include <vector>

namespace manager {

/// [one-thread] A file that has gone from the library without one of its faces coming in another,
/// or whose folder is away, outdates nothing.
class OutdatedSets {
public:
    /// Throws Error.
    explicit OutdatedSets(std::unique_ptr<Library> library);

    /// Those among the next `most` sets, to be brought up to date. Throws Error.
    [[nodiscard]] std::vector<ContainerFonts> takeSome(Activation& activation, std::size_t most);
    [[nodiscard]] bool isAtEnd() const { return ids_.empty(); }

private:
    std::unique_ptr<Library> library_;
    std::vector<ContainerId> ids_; ///< yet to be looked at
};

} // namespace manager
