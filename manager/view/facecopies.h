// SPDX-License-Identifier: MIT
// Which containers hold the same files, and which of them can be done without.
#pragma once

#include "manager/view/facetable.h"

#include <span>
#include <vector>

namespace manager {

/// [any-thread] A value that does not change once it was made.
class FaceCopies {
public:
    FaceCopies() = default;
    /// `files` are those with the same bytes, the copies of each together.
    FaceCopies(const FaceTable& table, const std::vector<std::vector<FileCopy>>& files);

    /// All faces that another container has too, by their numbers.
    [[nodiscard]] const std::vector<FaceId>& faces() const { return faces_; }
    /// The containers that have nothing but copies of what the `kept` ones have, in order.
    [[nodiscard]] std::vector<ContainerId> othersOf(const FaceTable& table,
                                                    std::span<const ContainerId> kept) const;

private:
    std::vector<std::vector<FaceRow>> groups_;
    std::vector<FaceId> faces_;
};

} // namespace manager
