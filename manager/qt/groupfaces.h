// SPDX-License-Identifier: MIT
// Which faces of the library collections and tags have.
#pragma once

#include "manager/cli/groups.h"
#include "manager/view/facetable.h"

#include <vector>

namespace manager {

/// [any-thread] For each of the groups its faces, in order. A member's number is to be that of the
/// table's index.
[[nodiscard]] std::vector<std::vector<FaceRow>> facesOf(const FaceTable& table,
                                                        const Groups& groups);

} // namespace manager
