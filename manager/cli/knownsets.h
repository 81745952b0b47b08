// SPDX-License-Identifier: MIT
// What the sets on disk tell of the containers' numbers, for an index that is begun anew.
#pragma once

#include "manager/library/library.h"

#include <vector>

namespace manager {

/// The containers that are active, told by their records. Of a set whose record cannot be read the
/// number alone is known. Never throws: a folder that cannot be read tells nothing.
[[nodiscard]] std::vector<KnownContainer> containersOnDisk(const Places& places);

} // namespace manager
